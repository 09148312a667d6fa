#include "console/console.h"

#include <algorithm>

namespace {

constexpr float highest_value = 127;

} // namespace

console::console(plugin& instrument, const console_options& options)
    : instrument_{instrument}, names_{parameter_names(instrument)}, options_{options} {
    for (const control_mapping& mapping : options.mappings)
        table_.set(mapping, find_parameter(names_, mapping.parameter));
    for (const registration& program : options.programs)
        programs_.push_back(registration_resolve(program, names_));
}

void console::take(message_view message, int frame, event_list& list) noexcept {
    if (options_.p_swell)
        options_.p_swell->follow();
    foot& sustain = feet_[message_channel(message)];
    switch (message_kind_of(message)) {
    case message_note_on:
    case message_note_off:
        if (message_is_stroke(message))
            sustain.held.reset(message[1]);
        else if (sustain.is_down)
            return void(sustain.held.set(message[1]));
        break;
    case message_control_change:
        if (take_controller(message, frame, list))
            return;
        break;
    case message_program_change:
        if (message[1] < programs_.size())
            return draw(programs_[message[1]]);
        break;
    default:
        break;
    }
    list.add(message, frame);
}

/// Returns whether the instrument gets nothing of it.
bool console::take_controller(message_view message, int frame, event_list& list) noexcept {
    const std::size_t channel = message_channel(message);
    const std::uint8_t controller = message[1];
    const float value = static_cast<float>(message[2]) / highest_value;
    if (controller >= controller_all_sound_off) {
        feet_[channel].held.reset();
        return false;
    }
    if (options_.sustains && controller == controller_sustain) {
        feet_[channel].is_down = message_holds_pedal(message);
        if (!feet_[channel].is_down)
            release_held(channel, frame, list);
        return true;
    }
    if (options_.p_swell && controller == controller_expression) {
        options_.p_swell->set_pedal(value);
        return true;
    }
    if (options_.learns)
        learn(channel, controller);
    const auto moved = table_.find(channel, controller);
    if (moved)
        move(moved->parameter, moved->is_reversed ? 1 - value : value);
    return moved.has_value();
}

void console::learn(std::size_t channel, std::uint8_t controller) noexcept {
    const int parameter = touched_.exchange(-1);
    if (parameter < 0)
        return;
    table_.set(channel, controller, {parameter, false});
    learned_ = static_cast<int>(channel * nb_midi_values + controller);
}

void console::release_held(std::size_t channel, int frame, event_list& list) noexcept {
    std::bitset<nb_midi_notes>& held = feet_[channel].held;
    for (std::size_t note = 0; held.any() && note < held.size(); ++note)
        if (held[note])
            list.add(message_release(channel, note), frame);
    held.reset();
}

void console::lift_pedals(int frame, event_list& list) noexcept {
    for (std::size_t channel = 0; channel < feet_.size(); ++channel) {
        feet_[channel].is_down = false;
        release_held(channel, frame, list);
    }
}

void console::draw(const std::vector<parameter_value>& values) noexcept {
    for (const parameter_value& value : values)
        move(value.index, value.value);
}

void console::move(int parameter, float value) noexcept {
    if (options_.p_swell && options_.p_swell->moves(parameter))
        options_.p_swell->set_volume(value);
    else
        instrument_.set_parameter(parameter, value);
}

void console::touch(int parameter, float value) noexcept {
    touched_ = parameter;
    if (options_.p_swell && options_.p_swell->moves(parameter))
        options_.p_swell->touch(value);
}

std::optional<control_mapping> console::take_learned() {
    const int learned = learned_.exchange(-1);
    if (learned < 0)
        return std::nullopt;
    const auto channel = static_cast<std::size_t>(learned) / nb_midi_values;
    const auto controller = static_cast<std::size_t>(learned) % nb_midi_values;
    const auto moved = table_.find(channel, controller);
    return control_mapping{static_cast<int>(controller), static_cast<int>(channel) + 1,
                           names_.at(static_cast<std::size_t>(moved->parameter)), false};
}
