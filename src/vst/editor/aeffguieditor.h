#pragma once
/// The base of an editor that shows its panel on a frame. It comes and goes in [setup]; all else is
/// [ui].

#include "platform/component_services/component_services.h"
#include "vst/aeffeditor.h"
#include "vst/audioeffectx.h"
#include "vstgui/cframe.h"
#include "vstgui/cframeowner.h"

class AEffGUIEditor : public AEffEditor, public CFrameOwner {
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

    void beginEdit(VstInt32 index) override; ///< tells the host that the user took a control
    void endEdit(VstInt32 index) override;   ///< and let it go
    void doIdleStuff() override;

    [[nodiscard]] void* getSystemWindow() const { return systemWindow; }

protected:
    /// Whether a gesture is under way that let the host have this turn.
    [[nodiscard]] bool isInIdle() const { return inIdle; }

    ERect rect{};
    CReference<CFrame> frame{}; ///< null while closed

private:
    template <typename Turn>
    void takeIdleTurn(Turn turn);

    component_services services = component_services_prepare();
    bool inIdle = false;
};
