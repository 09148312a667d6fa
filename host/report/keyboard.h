#pragma once
/// How a song lies on an instrument's keyboard.

#include "render/score.h"

#include <cstdint>

struct keyboard {
    int lowest; ///< MIDI notes of its ends
    int highest;
};

constexpr const char* tindelwax_id = "Tind"; ///< its uniqueID
constexpr keyboard tindelwax_keyboard{24, 72};
constexpr keyboard widest_keyboard{0, nb_midi_notes - 1};

/// Notes struck on the keyboard when all are moved by `transposition` semitones.
[[nodiscard]] std::uint64_t keyboard_count_played(const keyboard& keys, const score& music,
                                                  int transposition);

/// Those struck outside.
[[nodiscard]] std::uint64_t keyboard_count_outside(const keyboard& keys, const score& music,
                                                   int transposition);

/// The transposition that leaves the fewest outside; of equals the smallest, of those the upward.
[[nodiscard]] int keyboard_best_transposition(const keyboard& keys, const score& music);
