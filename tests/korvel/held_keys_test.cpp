#include "korvel/held_keys.h"

#include "tests/noise_bank.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <memory>
#include <random>

namespace {

constexpr unsigned nb_oscs = 8;

/// Wiring of 64 keys, three voices each, with resistors of any size.
harpmatrix create_wiring() {
    harpmatrix matrix{.name = "wiring"};
    std::mt19937 random{1};
    for (int k = 0; k < max_held_keys; ++k) {
        contact wired{.nb_voices = 3, .oscillators{}, .tapering{}, .conductance{}};
        for (int v = 0; v < 3; ++v) {
            wired.oscillators.push_back(static_cast<unsigned>(random() % nb_oscs));
            wired.tapering.push_back(100000);
            wired.conductance.push_back(1.0f / static_cast<float>(9 + random() % 10000));
        }
        matrix.p_keys.push_back({.nb_contacts = 1, .p_contacts{wired}});
    }
    return matrix;
}

struct HeldKeys : testing::Test {
    harpmatrix matrix = create_wiring();
    held_keys held;
    std::unique_ptr<tonegenerator, decltype(&tonegenerator_free)> tg{tonegenerator_create("test"),
                                                                     tonegenerator_free};

    HeldKeys() {
        tg->get_bank = [](int) {
            return create_noise_bank(1, std::vector(std::size_t{nb_oscs}, 1));
        };
        tonegenerator_set_sampling_rate(tg.get(), 1);
        held_keys_reserve(held, nb_oscs);
    }

    using gains = std::map<unsigned, float>; ///< by oscillator, of those that are reached

    /// What a block with these keys, pressed in this order, gives each oscillator.
    gains register_keys(const std::vector<unsigned>& keys) {
        for (const unsigned key : keys)
            held_keys_add(held, key);
        held_keys_register(held, &matrix, tg.get());
        gains registered;
        for (std::size_t i = 0; i < static_cast<std::size_t>(tg->nb_sustained_oscs); ++i)
            registered[static_cast<unsigned>(tg->sustained_oscillators[i])] =
                tg->sustained_oscillators_conductance[i];
        tonegenerator_reset_sustain(tg.get());
        return registered;
    }

    /// The sums of the playable conductances, over keys in order of their index.
    gains sum_by_index(std::vector<unsigned> keys) const {
        std::ranges::sort(keys);
        gains sums;
        for (const unsigned key : keys)
            for (std::size_t v = 0; v < 3; ++v) {
                const contact& wired = matrix.p_keys[key].p_contacts[0];
                if (wired.oscillators[v] < nb_oscs && std::isfinite(wired.conductance[v]))
                    sums[wired.oscillators[v]] += wired.conductance[v];
            }
        return sums;
    }
};

TEST_F(HeldKeys, SumsDoNotDependOnTheOrderOfPressing) {
    std::mt19937 random{2};
    std::vector<unsigned> keys(max_held_keys);
    for (unsigned k = 0; k < max_held_keys; ++k)
        keys[k] = k;
    for (int block = 0; block < 200; ++block) {
        std::ranges::shuffle(keys, random);
        const std::vector pressed(keys.begin(), keys.begin() + static_cast<int>(random() % 65));
        ASSERT_EQ(register_keys(pressed), sum_by_index(pressed)) << "block " << block;
        ASSERT_EQ(register_keys(pressed), sum_by_index(pressed)) << "held on, block " << block;
    }
}

TEST_F(HeldKeys, WhatCannotBePlayedIsLeftOut) {
    contact& shorted = matrix.p_keys[1].p_contacts[0];
    shorted.oscillators[1] = shorted.oscillators[0];
    shorted.conductance[1] = std::numeric_limits<float>::infinity();
    matrix.p_keys[2].p_contacts[0].oscillators[2] = nb_oscs;
    matrix.p_keys[3].p_contacts[0].oscillators[0] = 0xFFFFFFFFu;
    EXPECT_EQ(register_keys({1, 2, 3}), sum_by_index({1, 2, 3}));
    matrix.p_keys[4].p_contacts.clear();
    matrix.p_keys.resize(5);
    EXPECT_EQ(register_keys({3, 4, 63}), sum_by_index({3})) << "keys without wiring";
}

} // namespace
