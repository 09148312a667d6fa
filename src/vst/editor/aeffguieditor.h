#pragma once
/// The base of an editor that shows its panel on a frame. All is [ui].

#include "vst/aeffeditor.h"
#include "vst/audioeffectx.h"
#include "vstgui/cframe.h"

#include <memory>

/// How a drag turns a knob.
enum CKnobMode : VstInt32 {
    kCircularMode = 0,         ///< it points to the mouse
    kRelativeCircularMode = 1, ///< it turns with the mouse about it
    kLinearMode = 2,           ///< it follows the mouse up and down
};

class AEffGUIEditor : public AEffEditor {
public:
    /// Becomes the effect's editor, and its property. What derives from this closes its panel in
    /// its own destructor, while it can still hear of a gesture's end.
    explicit AEffGUIEditor(AudioEffectX* owner);

    bool getRect(ERect** size) override;
    void close() override;
    /// Lets the frame tell what happened and redraw, unless it is already about it.
    void idle() override;
    bool onWheel(float distance) override;
    bool setKnobMode(VstInt32 mode) override;

    /// The effect says that a parameter was set.
    virtual void setParameter(VstInt32 /*index*/, float /*value*/) {}

    virtual void beginEdit(VstInt32 index); ///< tells the host that the user took a control
    virtual void endEdit(VstInt32 index);   ///< and let it go

    /// Redraws and gives the host a turn, in the middle of a gesture.
    virtual void doIdleStuff();

    /// Expires with the editor. A host that gets a turn may close the effect: whoever gave it looks
    /// here afterwards.
    [[nodiscard]] std::weak_ptr<void> getLife() const { return ownLife; }

    [[nodiscard]] VstInt32 getKnobMode() const { return knobMode; } ///< CKnobMode
    [[nodiscard]] void* getSystemWindow() const { return systemWindow; }

protected:
    /// Whether a gesture is under way that let the host have this turn.
    [[nodiscard]] bool isInIdle() const { return inIdle; }

    ERect rect{};
    CReference<CFrame> frame{}; ///< null while closed

private:
    template <typename Turn>
    void takeIdleTurn(Turn turn);

    VstInt32 knobMode = kRelativeCircularMode;
    bool inIdle = false;
    std::shared_ptr<void> ownLife = std::make_shared<char>();
};
