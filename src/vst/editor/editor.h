#pragma once
/// The instrument's panel: it turns the user's gestures into parameter changes of the plug-in,
/// shows the changes that come from elsewhere, and carries out the actions that reach it as
/// parameters.
///
/// Parameters may move on [any] thread: their values wait in slots, which live as long as the
/// editor, until the panel is idle. The editor comes and goes in [setup]; all else is [ui].

#include "vst/editor/aeffguieditor.h"
#include "vst/editor/value_slot.h"
#include "vstgui/cbitmap.h"
#include "vstgui/ccontrollistener.h"

#include <vector>

class CControl;
class CMovieBitmap;
class COnOffButton;
class Organ;
struct control;
enum class file_content;

class Editor final : public AEffGUIEditor, public CControlListener {
public:
    /// Becomes the plug-in's editor. Plug-in and registry outlive it.
    Editor(Organ* owner, control* registry);
    ~Editor() override;

    /// Returns whether the panel can be shown in the host's window `parent`. Knobs turn in circles
    /// until the host asks for another mode.
    bool open(void* parent) override;
    void close() override;
    void idle() override;

    /// Keys are taken and ignored, so that a host does not play its own commands on them.
    bool onKeyDown(VstKeyCode&) override { return true; }

    /// Index and value are a parameter's, or an action's (see vst/editor/tags.h). Actions do
    /// nothing while the panel is closed.
    void setParameter(VstInt32 index, float value) override;

    /// A parameter's, which the panel shows when it is idle. [any]
    void showParameter(VstInt32 index, float value) noexcept NONBLOCKING;

    /// The program's values come through setParameter; there is no more to show.
    void setProgram(VstInt32) noexcept NONBLOCKING {}

    /// Actions are no parameters of the host's.
    void beginEdit(VstInt32 index) override;
    void endEdit(VstInt32 index) override;

    void valueChanged(CDrawContext* context, CControl* changed) override;

private:
    [[nodiscard]] bool isParameter(VstInt32 index) const noexcept NONBLOCKING;
    void showParameters();
    void toggleMidiLearn();
    void runMenuAction(float value);
    void useFile(VstFileSelectCommand command, file_content content,
                 void (Organ::*use)(const char* path));
    void takeChanges();
    void showMidiLearn();
    void showMidiActivity();

    Organ* p_effect;
    control* p_control;
    /// One for each parameter, null where the panel has none; all controls are the frame's.
    std::vector<CControl*> controls{};
    COnOffButton* cMidiLearnButton = nullptr;
    CMovieBitmap* cMidiInLED = nullptr;
    CReference<CBitmap> hBackground;
    std::vector<ValueSlot> changes; ///< one for each parameter
    bool midi_learn_active = false; ///< armed here, and not yet seen to have ended
    bool choosingFile = false;
};
