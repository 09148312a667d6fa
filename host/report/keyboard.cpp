#include "report/keyboard.h"

#include <numeric>

std::uint64_t keyboard_count_played(const keyboard& keys, const score& music, int transposition) {
    const auto& notes = music.notes_before_transposition;
    return std::accumulate(notes.begin(), notes.end(), std::uint64_t{0})
           - keyboard_count_outside(keys, music, transposition);
}

std::uint64_t keyboard_count_outside(const keyboard& keys, const score& music, int transposition) {
    std::uint64_t nb_outside = 0;
    for (int note = 0; note < nb_midi_notes; ++note) {
        const int key = note + transposition;
        if (key < keys.lowest || key > keys.highest)
            nb_outside += music.notes_before_transposition[static_cast<std::size_t>(note)];
    }
    return nb_outside;
}

int keyboard_best_transposition(const keyboard& keys, const score& music) {
    int best = 0;
    std::uint64_t nb_outside_at_best = keyboard_count_outside(keys, music, 0);
    for (int distance = 1; distance < nb_midi_notes; ++distance) {
        for (const int candidate : {distance, -distance}) {
            const std::uint64_t nb_outside = keyboard_count_outside(keys, music, candidate);
            if (nb_outside < nb_outside_at_best) {
                best = candidate;
                nb_outside_at_best = nb_outside;
            }
        }
    }
    return best;
}
