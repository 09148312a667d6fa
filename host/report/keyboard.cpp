#include "report/keyboard.h"

std::uint64_t keyboard_count_outside(const score& music, int transposition) {
    std::uint64_t nb_outside = 0;
    for (int note = 0; note < nb_midi_notes; ++note) {
        const int key = note + transposition;
        if (key < lowest_key || key > highest_key)
            nb_outside += music.notes_before_transposition[static_cast<std::size_t>(note)];
    }
    return nb_outside;
}

int keyboard_best_transposition(const score& music) {
    int best = 0;
    std::uint64_t nb_outside_at_best = keyboard_count_outside(music, 0);
    for (int distance = 1; distance < nb_midi_notes; ++distance) {
        for (const int candidate : {distance, -distance}) {
            const std::uint64_t nb_outside = keyboard_count_outside(music, candidate);
            if (nb_outside < nb_outside_at_best) {
                best = candidate;
                nb_outside_at_best = nb_outside;
            }
        }
    }
    return best;
}
