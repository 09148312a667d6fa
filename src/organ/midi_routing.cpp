#include "midi/midi.h"
#include "organ/organ.h"

#include <cstddef>

namespace {

void receive_note(organ* p_organ, const char* midi_data, int channel, int frame_index) {
    p_organ->is_resting = false;
    for (const auto& p_keybed : p_organ->p_keybeds)
        if (p_keybed->midi_channel == channel || p_keybed->omni_mode == 1)
            keybed_receive_midi_event(p_keybed.get(), midi_data, frame_index);
}

void all_notes_off(organ* p_organ, int channel, int frame_index) {
    for (const auto& p_keybed : p_organ->p_keybeds)
        if (p_keybed->midi_channel == channel && p_keybed->omni_mode == 0)
            keybed_all_key_off(p_keybed.get(), frame_index);
}

void all_sound_off(organ* p_organ, int channel) {
    for (const auto& p_keybed : p_organ->p_keybeds)
        if (p_keybed->midi_channel == channel || p_keybed->omni_mode != 0)
            keybed_reset(p_keybed.get());
}

void list_updates(control& registry, unsigned cc, unsigned channel, float value) {
    control_update& update = *registry.p_control_update;
    update.nb_parameter_updated = 0;
    for (std::size_t i = 0; i < registry.parameters.size(); ++i) {
        const parameter& param = *registry.parameters[i];
        if (param.midi_cc.load(std::memory_order_relaxed) != cc
            || param.midi_channel.load(std::memory_order_relaxed) != channel)
            continue;
        const auto position = static_cast<std::size_t>(update.nb_parameter_updated++);
        update.parameter_index[position] = static_cast<int>(i);
        update.parameter_value[position] = value;
    }
}

/// The controller goes to the parameter touched last; it moves the parameter from the next message
/// on.
void learn(control& registry, unsigned cc, unsigned channel) {
    control_update& update = *registry.p_control_update;
    // -1, before any was touched, lies beyond every list.
    const auto index = static_cast<std::size_t>(
        update.last_ui_control_changed_index.load(std::memory_order_relaxed));
    if (update.midi_learning.load(std::memory_order_relaxed) <= 0
        || index >= registry.parameters.size())
        return;
    parameter& param = *registry.parameters[index];
    param.midi_cc.store(cc, std::memory_order_relaxed);
    param.midi_channel.store(channel, std::memory_order_relaxed);
    update.midi_learning.store(0, std::memory_order_relaxed);
}

/// Data bytes above 127, which read as negative, are no controllers.
void receive_control_change(organ* p_organ, int cc, int value, int channel, int frame_index) {
    if (cc < 0 || value < 0)
        return;
    if (cc == midi_all_notes_off && value == 0) {
        all_notes_off(p_organ, channel, frame_index);
    } else if (cc == midi_all_sound_off && value == 0) {
        all_sound_off(p_organ, channel);
    } else if (p_organ->p_control) {
        const auto controller = static_cast<unsigned>(cc);
        const auto midi_channel = static_cast<unsigned>(channel);
        list_updates(*p_organ->p_control, controller, midi_channel,
                     static_cast<float>(value) / midi_highest_value);
        learn(*p_organ->p_control, controller, midi_channel);
    }
}

} // namespace

void organ_receive_midi_event(organ* p_organ, const char* midi_data, int frame_index) noexcept {
    const int channel = midi_channel(midi_data);
    switch (midi_kind(midi_data)) {
    case midi_note_off:
    case midi_note_on:
        receive_note(p_organ, midi_data, channel, frame_index);
        break;
    case midi_control_change:
        receive_control_change(p_organ, static_cast<signed char>(midi_data[1]),
                               static_cast<signed char>(midi_data[2]), channel, frame_index);
        break;
    default:
        break;
    }
}
