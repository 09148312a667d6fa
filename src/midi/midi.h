#pragma once
/// The MIDI channel messages that an organ understands, by their published numbers. All is [any].

#include "realtime/nonblocking.h"

enum midi_message_kind : int {
    midi_note_off = 0x80,
    midi_note_on = 0x90, ///< with velocity 0 a note-off
    midi_control_change = 0xB0,
    midi_program_change = 0xC0,
};

constexpr int midi_all_sound_off = 120; ///< controllers, with the value 0
constexpr int midi_all_notes_off = 123;
constexpr int midi_highest_value = 127; ///< of a controller

/// The kind of a 3-byte message; its channel, 1 to 16.
inline int midi_kind(const char* midi_data) noexcept NONBLOCKING {
    return static_cast<unsigned char>(midi_data[0]) & 0xF0;
}
inline int midi_channel(const char* midi_data) noexcept NONBLOCKING {
    return (static_cast<unsigned char>(midi_data[0]) & 0x0F) + 1;
}

/// Whether a message has its place in time: notes, and what silences them. Everything else acts as
/// soon as it comes.
inline bool midi_is_timed(const char* midi_data) noexcept NONBLOCKING {
    switch (midi_kind(midi_data)) {
    case midi_note_off:
    case midi_note_on:
        return true;
    case midi_control_change:
        return (midi_data[1] == midi_all_sound_off || midi_data[1] == midi_all_notes_off)
               && midi_data[2] == 0;
    default:
        return false;
    }
}
