#include "korvel/held_keys.h"

#include "tests/noise_bank.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <numeric>
#include <random>

namespace {

constexpr std::size_t nb_oscs = 8;

/// What a block with these keys gives, by oscillator.
std::vector<float> register_keys(held_keys& held, const harpmatrix& matrix, tonegenerator* p_tg,
                                 std::span<const unsigned> keys) {
    for (const unsigned key : keys)
        held_keys_add(held, key);
    held_keys_register(held, ~std::uint64_t{0}, &matrix, p_tg);
    tonegenerator_reset_sustain(p_tg);
    return p_tg->held_conductance;
}

TEST(HeldKeys, SumsDoNotDependOnTheOrderOfPressing) {
    harpmatrix matrix{.name = "wiring"};
    std::mt19937 random{1};
    for (std::size_t k = 0; k < max_held_keys - 2; ++k) // the last two are not wired
        matrix.p_keys.push_back(
            {.nb_contacts = 1,
             .p_contacts{{.nb_voices = 2,
                          .oscillators{static_cast<unsigned>(k % nb_oscs),
                                       static_cast<unsigned>(random() % nb_oscs)},
                          .tapering{100000, 100000},
                          .conductance{1.0f / static_cast<float>(9 + random() % 9999), 0.1f}}}});
    const std::unique_ptr<tonegenerator, decltype(&tonegenerator_free)> tg{
        tonegenerator_create("test"), tonegenerator_free};
    tg->get_bank = [](int) { return create_noise_bank(1, std::vector(nb_oscs, 1)); };
    tonegenerator_set_sampling_rate(tg.get(), 1);
    held_keys held;
    std::vector<unsigned> keys(max_held_keys);
    std::iota(keys.begin(), keys.end(), 0u);
    for (std::size_t block = 0; block < 200; ++block) {
        std::ranges::shuffle(keys, random);
        std::vector pressed(keys.begin(), keys.begin() + 1 + static_cast<int>(random() % 64));
        const auto gains = register_keys(held, matrix, tg.get(), pressed);
        ASSERT_EQ(std::ranges::max(gains) > 0, std::ranges::min(pressed) < max_held_keys - 2);
        ASSERT_EQ(register_keys(held, matrix, tg.get(), pressed), gains) << "held on";
        held_keys again;
        std::ranges::sort(pressed);
        ASSERT_EQ(register_keys(again, matrix, tg.get(), pressed), gains) << "block " << block;
    }
}

} // namespace
