#include "instrument_panel/instrument_panel.h"

#include "panel/tags.h"

#include <cstddef>
#include <limits>

instrument_panel::instrument_panel(instrument& shown)
    : played(shown),
      registry(played.shown().p_control.get()),
      panel(*this, *registry),
      values(registry->nb_parameters, std::numeric_limits<float>::quiet_NaN()) {}

bool instrument_panel::open(void* parent) {
    follow();
    return panel.open(parent);
}

void instrument_panel::idle() {
    follow();
    for (std::size_t i = 0; i < values.size(); ++i) {
        const int index = static_cast<int>(i);
        const float value = player_get_parameter(&played.shown(), index);
        if (value != values[i])
            panel.showParameter(index, values[i] = value);
    }
    panel.idle();
}

/// The instrument may have been made anew since.
void instrument_panel::follow() {
    control* const current = played.shown().p_control.get();
    if (current != registry)
        panel.setRegistry(*(registry = current));
}

void instrument_panel::controlMoved(int tag, float value) {
    follow();
    player& player = played.shown();
    if (panel.isParameter(tag)) {
        player_set_parameter(&player, tag, value);
        parameterMoved(tag, value);
    } else if (tag == PANIC_TAG) {
        player_panic(&player);
    } else if (tag == MIDI_LEARN_TAG) {
        panel.toggleMidiLearn();
    }
}

bool instrument_panel::takeMidiActivity() { return player_take_activity(&played.shown()); }
