#include "vst/editor/aeffguieditor.h"

#include <utility>

namespace {

AudioEffectX& effect_of(AudioEffect* effect) { return static_cast<AudioEffectX&>(*effect); }

} // namespace

AEffGUIEditor::AEffGUIEditor(AudioEffectX* owner) : AEffEditor(owner) { owner->setEditor(this); }

bool AEffGUIEditor::getRect(ERect** size) {
    if (size == nullptr)
        return false;
    *size = &rect;
    return true;
}

void AEffGUIEditor::close() {
    const CReference<CFrame> closing = std::exchange(frame, {});
    AEffEditor::close();
    if (closing) // last: where that ends a gesture the host may end the editor
        closing->detach();
}

void AEffGUIEditor::idle() {
    if (frame && !inIdle)
        takeIdleTurn([this] { frame->idle(); });
}

bool AEffGUIEditor::onWheel(float distance) { return frame && frame->onWheel(distance); }

bool AEffGUIEditor::setKnobMode(VstInt32 mode) {
    knobMode = static_cast<CKnobMode>(mode);
    return true;
}

void AEffGUIEditor::beginEdit(VstInt32 index) { effect_of(effect).beginEdit(index); }
void AEffGUIEditor::endEdit(VstInt32 index) { effect_of(effect).endEdit(index); }

void AEffGUIEditor::doIdleStuff() {
    if (frame)
        frame->redraw();
    takeIdleTurn([this] { effect->masterIdle(); });
}

/// The turn may end the editor.
template <typename Turn>
void AEffGUIEditor::takeIdleTurn(Turn turn) {
    const auto life = getLife();
    const bool wasInIdle = std::exchange(inIdle, true);
    turn();
    if (!life.expired())
        inIdle = wasInIdle;
}
