#pragma once
/// How a song lies on the keyboard of our own instrument.

#include "render/score.h"

#include <cstdint>

constexpr std::int32_t tindelwax_id = 0x54696E64; ///< 'Tind', its uniqueID
constexpr int lowest_key = 24;                    ///< MIDI notes of the keyboard's ends
constexpr int highest_key = 72;

/// Notes struck outside the keyboard when all are moved by `transposition` semitones.
[[nodiscard]] std::uint64_t keyboard_count_outside(const score& music, int transposition);

/// The transposition that leaves the fewest outside; of equals the smallest, of those the upward.
[[nodiscard]] int keyboard_best_transposition(const score& music);
