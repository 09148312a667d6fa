#pragma once
/// The MIDI channel messages that an organ understands, by their published numbers.

enum midi_message_kind : int {
    midi_note_off = 0x80,
    midi_note_on = 0x90,
    midi_control_change = 0xB0,
    midi_program_change = 0xC0,
};

constexpr int midi_all_sound_off = 120; ///< controllers, with the value 0
constexpr int midi_all_notes_off = 123;

/// The kind of a 3-byte message; its channel, 1 to 16.
inline int midi_kind(const char* midi_data) {
    return static_cast<unsigned char>(midi_data[0]) & 0xF0;
}
inline int midi_channel(const char* midi_data) {
    return (static_cast<unsigned char>(midi_data[0]) & 0x0F) + 1;
}
