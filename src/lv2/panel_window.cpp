#include "lv2/panel_window.h"

#include "lv2/ports.h"

namespace {

std::uint32_t port_of(int index) {
    return port_first_parameter + static_cast<std::uint32_t>(index);
}

} // namespace

lv2_panel_window::lv2_panel_window(instrument& shown, const lv2_told_host& told)
    : instrument_panel(shown), host(told) {}

lv2_panel_window::~lv2_panel_window() { close(); }

void lv2_panel_window::beginEdit(int index) { touch(held = index, true); }

void lv2_panel_window::endEdit(int index) {
    held = -1;
    touch(index, false);
}

void lv2_panel_window::touch(int index, bool is_grabbed) const {
    if (host.touch)
        host.touch->touch(host.touch->handle, port_of(index), is_grabbed);
}

void lv2_panel_window::parameterMoved(int index, float value) {
    host.write(host.controller, port_of(index), sizeof value, 0, &value);
}

lv2_panel::lv2_panel(instrument* shown, const lv2_told_host& told)
    : stand_in(shown ? nullptr : std::make_unique<instrument>()),
      window(shown ? *shown : *stand_in, told) {}

/// The plug-in hears its ports by itself, and what it makes of them is shown.
void lv2_panel::hear_port(std::uint32_t port, float value) {
    const int index = static_cast<int>(port - port_first_parameter);
    if (stand_in && !window.holds(index))
        player_set_parameter(&stand_in->shown(), index, value);
}

/// No message comes that could be learned: the switch springs back.
void lv2_panel::idle() {
    if (stand_in)
        stand_in->shown().p_control->p_control_update->midi_learning = 0;
    window.idle();
}
