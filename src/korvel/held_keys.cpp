#include "korvel/held_keys.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace {

void add_contact(held_keys& held, const contact& key_contact) {
    for (unsigned v = 0; v < key_contact.nb_voices; ++v) {
        const unsigned osc = key_contact.oscillators[v];
        const float conductance = key_contact.conductance[v];
        if (osc >= held.positions.size() || !std::isfinite(conductance))
            continue;
        if (held.positions[osc] < 0) { // within the capacity: each oscillator once
            const std::size_t position = held.nb_oscillators++;
            held.positions[osc] = static_cast<int>(position);
            held.oscillators[position] = osc;
            held.conductances[position] = 0.0f;
        }
        held.conductances[static_cast<std::size_t>(held.positions[osc])] += conductance;
    }
}

void sum_conductances(held_keys& held, const harpmatrix* p_matrix) {
    std::ranges::fill(held.positions, -1);
    held.nb_oscillators = 0;
    for (std::uint64_t rest = held.keys; rest != 0; rest &= rest - 1) {
        const auto key = static_cast<unsigned>(std::countr_zero(rest));
        if (const contact* p_contact = harpmatrix_find_contact(p_matrix, key, 0))
            add_contact(held, *p_contact);
    }
    held.summed = held.keys;
}

} // namespace

void held_keys_reserve(held_keys& held, int nb_oscs) {
    const auto count = static_cast<std::size_t>(nb_oscs);
    held.positions.assign(count, -1);
    held.oscillators.assign(count, 0);
    held.conductances.assign(count, 0.0f);
}

void held_keys_register(held_keys& held, const harpmatrix* p_matrix, tonegenerator* p_tg) noexcept {
    if (held.keys != held.summed) {
        sum_conductances(held, p_matrix);
        tone_generator_hold(p_tg, std::span(held.oscillators).first(held.nb_oscillators),
                            std::span(held.conductances).first(held.nb_oscillators));
    }
    held.keys = 0;
}
