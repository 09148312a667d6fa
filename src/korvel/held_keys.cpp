#include "korvel/held_keys.h"

#include <bit>
#include <utility>

void held_keys_register(held_keys& held, std::uint64_t audible, const harpmatrix* p_matrix,
                        tonegenerator* p_tg) noexcept {
    held.before = std::exchange(held.keys, 0);
    const std::uint64_t keys = held.before & audible;
    if (std::exchange(held.registered, keys) == keys)
        return;
    tone_generator_clear_held(p_tg);
    for (std::uint64_t rest = keys; rest != 0; rest &= rest - 1) {
        const auto key = static_cast<unsigned>(std::countr_zero(rest));
        const contact* p_contact = harpmatrix_find_contact(p_matrix, key, 0);
        for (unsigned v = 0; p_contact && v < p_contact->nb_voices; ++v)
            tone_generator_add_held_oscillator(p_tg, p_contact->oscillators[v],
                                               p_contact->conductance[v]);
    }
}
