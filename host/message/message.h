#pragma once
/// MIDI messages as bytes, by their published numbers. A message is complete: a status byte and
/// what follows it. All is [any].

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

using message_view = std::span<const std::uint8_t>;
using short_message = std::array<std::uint8_t, 3>;

enum message_kind : std::uint8_t {
    message_note_off = 0x80,
    message_note_on = 0x90, ///< with velocity 0 a note-off
    message_key_pressure = 0xA0,
    message_control_change = 0xB0,
    message_program_change = 0xC0,
    message_channel_pressure = 0xD0,
    message_sysex = 0xF0,
};

enum message_controller : std::uint8_t {
    controller_expression = 11,
    controller_sustain = 64,
    controller_all_sound_off = 120, ///< and those above are no controllers that could be moved
};

constexpr int nb_midi_notes = 128;
constexpr int nb_midi_channels = 16;
constexpr int nb_midi_values = 128;

constexpr std::uint8_t message_kind_of(message_view message) noexcept {
    return message[0] >= message_sysex ? message[0] : message[0] & 0xF0;
}

/// Bytes of a channel message that begins so.
constexpr std::size_t message_size(std::uint8_t status) noexcept {
    return status >= message_program_change && status < 0xE0 ? 2 : 3;
}

constexpr std::size_t message_channel(message_view message) noexcept { return message[0] & 0x0F; }

constexpr bool message_is_stroke(message_view message) noexcept {
    return message_kind_of(message) == message_note_on && message[2] > 0;
}

constexpr bool message_is_release(message_view message) noexcept {
    return message_kind_of(message) == message_note_off
           || (message_kind_of(message) == message_note_on && message[2] == 0);
}

constexpr bool message_is_controller(message_view message, std::uint8_t number) noexcept {
    return message_kind_of(message) == message_control_change && message[1] == number;
}

/// Whether a pedal's controller says that it is down.
constexpr bool message_holds_pedal(message_view message) noexcept { return message[2] >= 64; }

constexpr short_message message_make(message_kind kind, std::size_t channel, std::size_t number,
                                     std::uint8_t value) noexcept {
    return {static_cast<std::uint8_t>(kind | channel), static_cast<std::uint8_t>(number), value};
}

constexpr short_message message_release(std::size_t channel, std::size_t note) noexcept {
    return message_make(message_note_off, channel, note, 64);
}
