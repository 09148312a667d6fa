#pragma once
/// The base of an editor that shows the panel. It comes and goes in [setup]; all else is [ui].

#include "panel/panel.h"
#include "platform/component_services/component_services.h"
#include "vst/aeffeditor.h"
#include "vst/audioeffectx.h"

class AEffGUIEditor : public AEffEditor, public PanelOwner {
public:
    /// Becomes the effect's editor, and its property. What derives from this closes its panel in
    /// its own destructor, while it can still hear of a gesture's end.
    AEffGUIEditor(AudioEffectX* owner, control& registry);

    bool getRect(ERect** size) override;

    /// How large the host wants the panel, which keeps its size while it is open. Returns whether
    /// it has that one, or the nearest to it.
    bool setScale(float wanted);

    /// Returns whether the panel can be shown in the host's window `parent`.
    bool open(void* parent) override;
    void close() override;
    void idle() override;
    bool onWheel(float distance) override;
    bool setKnobMode(VstInt32 mode) override;

    /// The effect says that a parameter was set.
    virtual void setParameter(VstInt32 /*index*/, float /*value*/) {}

    void beginEdit(int index) override; ///< tells the host that the user took a control
    void endEdit(int index) override;   ///< and let it go
    void giveTurn() override;

    [[nodiscard]] void* getSystemWindow() const { return systemWindow; }

    /// Expires with the editor. Whoever gave the host a turn looks here afterwards.
    [[nodiscard]] std::weak_ptr<void> getLife() const { return panel.getLife(); }

protected:
    Panel panel;

private:
    void measure();

    ERect rect{};
    component_services services = component_services_prepare();
};
