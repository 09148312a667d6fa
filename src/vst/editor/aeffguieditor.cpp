#include "vst/editor/aeffguieditor.h"

namespace {

AudioEffectX& effect_of(AudioEffect* effect) { return static_cast<AudioEffectX&>(*effect); }

} // namespace

AEffGUIEditor::AEffGUIEditor(AudioEffectX* owner, control& registry)
    : AEffEditor(owner), panel(*this, registry) {
    measure();
    owner->setEditor(this);
}

void AEffGUIEditor::measure() {
    rect.bottom = static_cast<VstInt16>(panel.getHeight());
    rect.right = static_cast<VstInt16>(panel.getWidth());
}

bool AEffGUIEditor::setScale(float wanted) {
    const bool isTaken = panel.setScale(wanted);
    measure();
    return isTaken;
}

bool AEffGUIEditor::getRect(ERect** size) {
    if (size == nullptr)
        return false;
    *size = &rect;
    return true;
}

bool AEffGUIEditor::open(void* parent) {
    close();
    if (!panel.open(parent))
        return false;
    systemWindow = parent;
    return true;
}

void AEffGUIEditor::close() {
    AEffEditor::close();
    panel.close(); // last: the host may end the editor
}

void AEffGUIEditor::idle() { panel.idle(); }

bool AEffGUIEditor::onWheel(float distance) { return panel.onWheel(distance); }

bool AEffGUIEditor::setKnobMode(VstInt32 mode) {
    panel.setKnobMode(static_cast<CKnobMode>(mode));
    return true;
}

void AEffGUIEditor::beginEdit(int index) { effect_of(effect).beginEdit(index); }
void AEffGUIEditor::endEdit(int index) { effect_of(effect).endEdit(index); }

void AEffGUIEditor::giveTurn() { effect->masterIdle(); }
