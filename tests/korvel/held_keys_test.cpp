#include "korvel/held_keys.h"

#include "tests/noise_bank.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <memory>
#include <numeric>
#include <random>

namespace {

constexpr unsigned nb_oscs = 8;

/// Three voices a key, with resistors of any size. Some keys have an oscillator that is not there,
/// a resistor of 0 or no contact, and the last are not wired at all.
harpmatrix create_wiring() {
    harpmatrix matrix{.name = "wiring"};
    std::mt19937 random{1};
    const auto below = [&](unsigned n) { return static_cast<unsigned>(random() % n); };
    for (unsigned k = 0; k < max_held_keys - 3; ++k) {
        contact wired{.nb_voices = 3, .oscillators{}, .tapering{}, .conductance{}};
        for (int v = 0; v < 3; ++v) {
            wired.oscillators.push_back(k == 2 ? 0xFFFFFFFFu : below(nb_oscs + (k == 1)));
            wired.conductance.push_back(1.0f / static_cast<float>(k == 3 ? 0 : 9 + below(999)));
        }
        matrix.p_keys.push_back({.nb_contacts = 1, .p_contacts{wired}});
    }
    matrix.p_keys[4].p_contacts.clear();
    return matrix;
}

using gains = std::map<unsigned, float>; ///< by oscillator, of those that are reached

/// The sums of the playable conductances, over keys in order of their index.
gains sum_by_index(const harpmatrix& matrix, std::vector<unsigned> keys) {
    std::ranges::sort(keys);
    gains sums;
    for (const unsigned key : keys)
        if (const contact* wired = harpmatrix_find_contact(&matrix, key, 0))
            for (std::size_t v = 0; v < 3; ++v)
                if (wired->oscillators[v] < nb_oscs && std::isfinite(wired->conductance[v]))
                    sums[wired->oscillators[v]] += wired->conductance[v];
    return sums;
}

TEST(HeldKeys, SumWhatCanBePlayedInWhateverOrderKeysArePressed) {
    const harpmatrix matrix = create_wiring();
    const std::unique_ptr<tonegenerator, decltype(&tonegenerator_free)> tg{
        tonegenerator_create("test"), tonegenerator_free};
    tg->get_bank = [](int) { return create_noise_bank(1, std::vector(std::size_t{nb_oscs}, 1)); };
    tonegenerator_set_sampling_rate(tg.get(), 1);
    held_keys held;
    held_keys_reserve(held, nb_oscs);
    std::mt19937 random{2};
    std::vector<unsigned> keys(max_held_keys);
    std::iota(keys.begin(), keys.end(), 0u);
    for (int block = 0; block < 200; ++block) {
        if (block % 2 == 0) // and held on in the block after
            std::ranges::shuffle(keys, random);
        const std::vector pressed(keys.begin(), keys.begin() + block / 2 * 7 % 65);
        for (const unsigned key : pressed)
            held_keys_add(held, key);
        held_keys_register(held, &matrix, tg.get());
        gains registered;
        for (std::size_t i = 0; i < static_cast<std::size_t>(tg->nb_sustained_oscs); ++i)
            registered[static_cast<unsigned>(tg->sustained_oscillators[i])] =
                tg->sustained_oscillators_conductance[i];
        tonegenerator_reset_sustain(tg.get());
        ASSERT_EQ(registered, sum_by_index(matrix, pressed)) << "block " << block;
    }
}

} // namespace
