#include "panel/panel.h"

#include "control/control.h"
#include "panel/panel_layout.h"
#include "vstgui/cmoviebitmap.h"
#include "vstgui/conoffbutton.h"

#include <cstdint>
#include <utility>

Panel::Panel(PanelOwner& its_owner, control& its_registry)
    : owner(its_owner),
      registry(&its_registry),
      hBackground(load_background(1)),
      changes(its_registry.nb_parameters) {
    scale = default_scale();
}

Panel::~Panel() { close(); }

bool Panel::setScale(double wanted) {
    const auto nearest = nearest_scale(wanted);
    if (!nearest || (frame && *nearest != scale))
        return false;
    scale = *nearest;
    return true;
}

int Panel::getWidth() const { return scale * hBackground->getWidth(); }

int Panel::getHeight() const { return scale * hBackground->getHeight(); }

bool Panel::open(void* parent) {
    close();
    setKnobMode(kRelativeCircularMode);
    const CRect size{0, 0, getWidth(), getHeight()};
    auto opened = CReference<CFrame>::make(size, parent, this);
    if (!opened->isOpen())
        return false;
    opened->setBackground((scale == 1 ? hBackground : load_background(scale)).get());
    const panel_ground ground{*opened, this, scale};
    controls = add_parameter_controls(ground, *registry);
    cMidiLearnButton = add_learn_switch(ground);
    cMidiInLED = add_midi_lamp(ground);
    add_panic_button(ground);
    frame = std::move(opened);
    showParameters();
    return true;
}

void Panel::setRegistry(control& another) {
    registry = &another;
    showParameters();
}

void Panel::close() {
    controls.clear();
    if (const CReference<CFrame> closing = std::exchange(frame, {}))
        closing->detach();
}

/// What was put while the panel was closed is in the registry too.
void Panel::showParameters() {
    for (std::size_t i = 0; i < controls.size(); ++i) {
        changes[i].take();
        if (controls[i])
            controls[i]->setValue(control_get_parameter(registry, static_cast<int>(i)));
    }
}

void Panel::idle() {
    if (!frame)
        return;
    if (!inTurn) { // else a value set before would undo what the hand has just done
        takeChanges();
        const auto life = getLife();
        takeTurn([this] { frame->idle(); });
        if (life.expired() || !frame) // a gesture made the host end the panel, or close it
            return;
    }
    showMidiLearn();
    cMidiInLED->setValue(owner.takeMidiActivity() ? 1.0f : 0.0f);
}

void Panel::takeChanges() {
    for (std::size_t i = 0; i < controls.size(); ++i)
        if (const auto value = changes[i].take(); value && controls[i])
            controls[i]->setValue(*value);
}

/// The engine has learned a controller, or the user gave up.
void Panel::showMidiLearn() {
    const auto& learning = registry->p_control_update->midi_learning;
    if (!midi_learn_active || learning.load(std::memory_order_relaxed) != 0)
        return;
    midi_learn_active = false;
    cMidiLearnButton->setValue(0);
}

void Panel::toggleMidiLearn() {
    auto& learning = registry->p_control_update->midi_learning;
    int armed = 1;
    if (learning.compare_exchange_strong(armed, 0, std::memory_order_relaxed))
        return;
    learning.store(1, std::memory_order_relaxed);
    midi_learn_active = true;
}

bool Panel::isParameter(int index) const noexcept {
    return static_cast<std::uint32_t>(index) < changes.size();
}

void Panel::showParameter(int index, float value) noexcept {
    if (isParameter(index))
        changes[static_cast<std::size_t>(index)].put(value);
}

void Panel::valueChanged(CDrawContext*, CControl* changed) {
    owner.controlMoved(changed->getTag(), changed->getValue());
    changed->setDirty();
}

/// Actions are no parameters of the host's.
void Panel::beginEdit(int tag) {
    if (isParameter(tag))
        owner.beginEdit(tag);
}

void Panel::endEdit(int tag) {
    if (isParameter(tag))
        owner.endEdit(tag);
}

void Panel::doIdleStuff() {
    if (frame)
        frame->redraw();
    takeTurn([this] { owner.giveTurn(); });
}

/// The turn may end the panel.
template <typename Turn>
void Panel::takeTurn(Turn turn) {
    const auto life = getLife();
    const bool wasInTurn = std::exchange(inTurn, true);
    turn();
    if (!life.expired())
        inTurn = wasInTurn;
}
