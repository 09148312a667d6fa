#include "vst/editor/editor.h"

#include "vst/editor/file_choice.h"
#include "vst/editor/tags.h"
#include "vst/organ.h"

#include <algorithm>
#include <utility>

namespace {

constexpr float highest_program = 1e9f; ///< within the integers

} // namespace

Editor::Editor(Organ* owner, control* registry)
    : AEffGUIEditor(owner, *registry), p_effect(owner) {}

Editor::~Editor() { Editor::close(); }

void Editor::controlMoved(int tag, float value) {
    if (panel.isParameter(tag))
        p_effect->setParameterAutomated(tag, value);
    else
        p_effect->setParameter(tag, value);
}

bool Editor::takeMidiActivity() {
    return p_effect->midiNumEvents.exchange(0, std::memory_order_relaxed) != 0;
}

void Editor::showParameter(VstInt32 index, float value) noexcept {
    panel.showParameter(index, value);
}

void Editor::setParameter(VstInt32 index, float value) {
    showParameter(index, value);
    if (index < MIDI_LEARN_TAG || !panel.isOpen())
        return;
    switch (index) {
    case MIDI_LEARN_TAG:
        panel.toggleMidiLearn();
        break;
    case PANIC_TAG:
        p_effect->panic();
        break;
    case MENU_TAG:
        runMenuAction(value);
        break;
    case PROGRAM_TAG:
        p_effect->setProgram(static_cast<VstInt32>(std::clamp(value, -1.0f, highest_program)));
        break;
    default:
        break;
    }
}

void Editor::runMenuAction(float value) {
    const auto action = static_cast<int>(std::clamp(value, -1.0f, 100.0f));
    if (static_cast<float>(action) != value)
        return;
    switch (action) {
    case BASS_R_TAG:
    case BASS_L_TAG:
    case BASS_MIXED_TAG:
        p_effect->setOutputMode(action);
        break;
    case BANK_LOAD_TAG:
        useFile(kVstFileLoad, file_content::bank, &Organ::ProgBankLoad);
        break;
    case BANK_SAVE_TAG:
        useFile(kVstFileSave, file_content::bank, &Organ::ProgBankSave);
        break;
    case PATCH_LOAD_TAG:
        useFile(kVstFileLoad, file_content::patch, &Organ::ProgLoad);
        break;
    case PATCH_SAVE_TAG:
        useFile(kVstFileSave, file_content::patch, &Organ::ProgSave);
        break;
    case PATCH_STORE_CURRENT:
        p_effect->storeCurrentProg();
        break;
    default:
        break;
    }
}

/// One question at a time: the panel goes on while the user chooses, and may be closed.
void Editor::useFile(VstFileSelectCommand command, file_content content,
                     void (Organ::*use)(const char* path)) {
    if (std::exchange(choosingFile, true))
        return;
    const auto life = getLife();
    const auto path = choose_file(p_effect, command, content);
    if (life.expired())
        return;
    choosingFile = false;
    if (path)
        (p_effect->*use)(path->c_str());
}
