#pragma once
/// The plug-in's editor: it shows the instrument's panel in the host's window, and carries out the
/// actions that reach it as parameters.
///
/// Parameters may be shown on [any] thread. The editor comes and goes in [setup]; all else is [ui].

#include "vst/editor/aeffguieditor.h"

class Organ;
struct control;
enum class file_content;

class Editor final : public AEffGUIEditor {
public:
    /// Becomes the plug-in's editor. Plug-in and registry outlive it.
    Editor(Organ* owner, control* registry);
    ~Editor() override;

    /// Keys are taken and ignored, so that a host does not play its own commands on them.
    bool onKeyDown(VstKeyCode&) override { return true; }

    /// Index and value are a parameter's, or an action's (see vst/editor/tags.h). Actions do
    /// nothing while the panel is closed.
    void setParameter(VstInt32 index, float value) override;

    /// A parameter's, which the panel shows when it is idle. [any]
    void showParameter(VstInt32 index, float value) noexcept NONBLOCKING;

    /// The program's values come through setParameter; there is no more to show.
    void setProgram(VstInt32) noexcept NONBLOCKING {}

    void controlMoved(int tag, float value) override;
    bool takeMidiActivity() override;

private:
    void runMenuAction(float value);
    void useFile(VstFileSelectCommand command, file_content content,
                 void (Organ::*use)(const char* path));

    Organ* p_effect;
    bool choosingFile = false;
};
