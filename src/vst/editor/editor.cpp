#include "vst/editor/editor.h"

#include "control/control.h"
#include "vst/editor/file_choice.h"
#include "vst/editor/panel_layout.h"
#include "vst/editor/tags.h"
#include "vst/organ.h"
#include "vstgui/cmoviebitmap.h"
#include "vstgui/conoffbutton.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace {

constexpr float highest_program = 1e9f; ///< within the integers

} // namespace

Editor::Editor(Organ* owner, control* registry)
    : AEffGUIEditor(owner),
      p_effect(owner),
      p_control(registry),
      hBackground(load_background()),
      changes(registry->nb_parameters) {
    rect.bottom = static_cast<VstInt16>(hBackground->getHeight());
    rect.right = static_cast<VstInt16>(hBackground->getWidth());
}

Editor::~Editor() { Editor::close(); }

bool Editor::open(void* parent) {
    close();
    setKnobMode(kRelativeCircularMode);
    const CRect size{0, 0, hBackground->getWidth(), hBackground->getHeight()};
    auto opened = CReference<CFrame>::make(size, parent, this);
    if (!opened->isOpen())
        return false;
    opened->setBackground(hBackground.get());
    controls = add_parameter_controls(*opened, this, *p_control);
    cMidiLearnButton = add_learn_switch(*opened, this);
    cMidiInLED = add_midi_lamp(*opened, this);
    add_panic_button(*opened, this);
    systemWindow = parent;
    frame = std::move(opened);
    showParameters();
    return true;
}

void Editor::close() {
    controls.clear();
    AEffGUIEditor::close();
}

/// What was put while the panel was closed is in the registry too.
void Editor::showParameters() {
    for (std::size_t i = 0; i < controls.size(); ++i) {
        changes[i].take();
        if (controls[i])
            controls[i]->setValue(control_get_parameter(p_control, static_cast<int>(i)));
    }
}

void Editor::idle() {
    if (!frame)
        return;
    if (!isInIdle()) // else a value set before would undo what the hand has just done
        takeChanges();
    const auto life = getLife();
    AEffGUIEditor::idle();
    if (life.expired() || !frame) // a gesture made the host close the effect, or the panel
        return;
    showMidiLearn();
    showMidiActivity();
}

void Editor::takeChanges() {
    for (std::size_t i = 0; i < controls.size(); ++i)
        if (const auto value = changes[i].take(); value && controls[i])
            controls[i]->setValue(*value);
}

/// The engine has learned a controller, or the user gave up.
void Editor::showMidiLearn() {
    const auto& learning = p_control->p_control_update->midi_learning;
    if (!midi_learn_active || learning.load(std::memory_order_relaxed) != 0)
        return;
    midi_learn_active = false;
    cMidiLearnButton->setValue(0);
}

void Editor::showMidiActivity() {
    const bool active = p_effect->midiNumEvents.exchange(0, std::memory_order_relaxed) != 0;
    cMidiInLED->setValue(active ? 1.0f : 0.0f);
}

void Editor::valueChanged(CDrawContext*, CControl* changed) {
    const int tag = changed->getTag();
    if (isParameter(tag))
        p_effect->setParameterAutomated(tag, changed->getValue());
    else
        p_effect->setParameter(tag, changed->getValue());
    changed->setDirty();
}

void Editor::beginEdit(VstInt32 index) {
    if (isParameter(index))
        AEffGUIEditor::beginEdit(index);
}

void Editor::endEdit(VstInt32 index) {
    if (isParameter(index))
        AEffGUIEditor::endEdit(index);
}

bool Editor::isParameter(VstInt32 index) const noexcept {
    return static_cast<std::uint32_t>(index) < changes.size();
}

void Editor::showParameter(VstInt32 index, float value) noexcept {
    if (isParameter(index))
        changes[static_cast<std::size_t>(index)].put(value);
}

void Editor::setParameter(VstInt32 index, float value) {
    showParameter(index, value);
    if (index < MIDI_LEARN_TAG || !frame)
        return;
    switch (index) {
    case MIDI_LEARN_TAG:
        toggleMidiLearn();
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

void Editor::toggleMidiLearn() {
    auto& learning = p_control->p_control_update->midi_learning;
    int armed = 1;
    if (learning.compare_exchange_strong(armed, 0, std::memory_order_relaxed))
        return;
    learning.store(1, std::memory_order_relaxed);
    midi_learn_active = true;
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
