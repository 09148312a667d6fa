#pragma once
/// A song made ready for playing: the wished channels, transposed, at frames instead of times, and
/// with its held notes released at the end.

#include "message/message.h"
#include "midi_file/midi_file.h"

#include <array>
#include <bitset>
#include <cstdint>
#include <span>
#include <vector>

struct score_options {
    std::bitset<nb_midi_channels> channels{0xFDFF}; ///< bit 0 is channel 1; all but 10, the drums
    int transposition = 0;                          ///< semitones
    double max_seconds = 0;                         ///< what comes later is left out; 0: no limit
};

struct score_event {
    std::uint64_t frame;
    std::uint32_t offset; ///< of its first byte in score::bytes
    std::uint32_t nb_bytes;
};

struct score {
    std::vector<score_event> events{}; ///< by frame
    std::vector<std::uint8_t> bytes{};
    std::uint64_t nb_frames = 0;   ///< the song's end, where the last events may be
    std::uint64_t nb_unwished = 0; ///< strokes on the other channels
    std::array<std::uint64_t, nb_midi_notes> notes_before_transposition{}; ///< strokes of each
};

/// Notes that the transposition moves out of MIDI's range are left out.
[[nodiscard]] score score_arrange(const midi_song& song, const score_options& options, int rate_hz);

[[nodiscard]] message_view score_message(const score& music, const score_event& event);
