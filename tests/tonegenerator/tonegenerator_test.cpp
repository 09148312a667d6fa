#include "tonegenerator/tonegenerator.h"

#include "plain/tone_generator.h"
#include "tests/tonegenerator/tables.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <memory>

namespace {

using samples = std::vector<float>;
using tonegenerator_ptr = std::unique_ptr<tonegenerator, decltype(&tonegenerator_free)>;

tonegenerator_ptr create(rate_pair rates, int block_size) {
    tonegenerator_ptr tg{tonegenerator_create("test"), tonegenerator_free};
    tg->get_bank = [=](int) { return create_noise_bank(rates.table, table_lengths); };
    tonegenerator_set_sampling_rate(tg.get(), rates.engine);
    tonegenerator_set_block_size(tg.get(), block_size);
    return tg;
}

samples next(tonegenerator* p_tg, unsigned osc_start = 0, unsigned osc_end = last_osc) {
    samples dest(static_cast<std::size_t>(p_tg->block_size));
    tone_generator_next(p_tg, dest, osc_start, osc_end);
    return dest;
}

void expect_near(const samples& fast, const samples& plain, const std::string& where) {
    ASSERT_EQ(fast.size(), plain.size());
    for (std::size_t i = 0; i < fast.size(); ++i)
        // Gains of up to 3 on nine oscillators, each read to 2e-4.
        ASSERT_NEAR(fast[i], plain[i], 2e-3f) << where << ", frame " << i;
}

/// What keys do in a block: sustain, or play a part of it with an envelope or without.
void contribute(tonegenerator* p_tg, std::mt19937& random) {
    const auto block = static_cast<unsigned>(p_tg->block_size);
    const samples envelope = noise(block, static_cast<unsigned>(random()));
    for (unsigned key = 0; key < 12; ++key) {
        const auto osc = static_cast<unsigned>(random() % (last_osc + 1));
        const float conductance = static_cast<float>(random() % 1000) / 4000;
        const auto start = static_cast<unsigned>(random() % (block + 1));
        const auto nframes = static_cast<unsigned>(random() % (block - start + 1));
        switch (random() % 3) {
        case 0:
            tone_generator_add_sustained_oscillator(p_tg, osc, conductance);
            break;
        case 1:
            tone_generator_add_non_sustained_oscillator(p_tg, osc, start, nframes, nullptr,
                                                        conductance);
            break;
        default:
            tone_generator_add_non_sustained_oscillator(p_tg, osc, start, nframes, envelope.data(),
                                                        conductance);
        }
    }
}

void expect_plain_block(tonegenerator* p_tg, std::mt19937& random, const std::string& where) {
    contribute(p_tg, random);
    samples fast = noise(static_cast<std::size_t>(p_tg->block_size), 1);
    samples plain = fast;
    tone_generator_next(p_tg, fast, 1, last_osc - 1);
    plain_tone_generator_next(p_tg, plain, 1, last_osc - 1);
    expect_near(fast, plain, where);
    tonegenerator_reset_sustain(p_tg);
}

TEST(ToneGenerator, RendersLikeThePlainForm) {
    const std::span<const rate_pair> ratio_lists[] = {whole_ratios, other_ratios};
    std::mt19937 random{1};
    for (const std::span<const rate_pair> ratios : ratio_lists)
        for (const rate_pair rates : ratios)
            for (const int block_size : {1, 7, 64, 65, 509, 4096}) {
                const auto tg = create(rates, block_size);
                const auto block = static_cast<std::uint32_t>(block_size);
                for (const std::uint32_t phase : {0u, 871u, 4000000000u, 0u - block}) {
                    tg->global_phase_index = phase;
                    expect_plain_block(tg.get(), random,
                                       std::to_string(rates.engine) + " Hz, block of "
                                           + std::to_string(block_size) + " at "
                                           + std::to_string(phase));
                }
            }
}

TEST(ToneGenerator, BlocksJoinHoweverTheyAreCut) {
    constexpr int total = 4096;
    const auto render = [](rate_pair rates, int block_size) {
        const auto tg = create(rates, total);
        tg->global_phase_index = 1000000;
        samples joined;
        while (joined.size() < total) {
            const auto rest = total - static_cast<int>(joined.size());
            tonegenerator_set_block_size(tg.get(), std::min(block_size, rest));
            for (unsigned osc = 0; osc <= last_osc; ++osc)
                tone_generator_add_sustained_oscillator(tg.get(), osc, 0.25f);
            const samples block = next(tg.get());
            tonegenerator_reset_sustain(tg.get());
            tg->global_phase_index += static_cast<std::uint32_t>(block.size());
            joined.insert(joined.end(), block.begin(), block.end());
        }
        return joined;
    };
    for (const int block_size : {1, 7, 64, 65, 509}) {
        for (const rate_pair rates : whole_ratios)
            EXPECT_EQ(render(rates, block_size), render(rates, total))
                << rates.engine << " Hz, blocks of " << block_size;
        for (const rate_pair rates : other_ratios)
            expect_near(render(rates, block_size), render(rates, total),
                        std::to_string(rates.engine) + " Hz, blocks of "
                            + std::to_string(block_size));
    }
}

TEST(ToneGenerator, ProcessRendersOneOscillatorLikeThePlainForm) {
    const samples envelope = noise(509, 2);
    for (const rate_pair rates : {whole_ratios[0], other_ratios[0]})
        for (const float* p_env : {static_cast<const float*>(nullptr), envelope.data()})
            for (const auto& [start, nframes] :
                 {std::pair{0u, 509u}, {100u, 1u}, {3u, 400u}, {5u, 0u}}) {
                const auto tg = create(rates, 509);
                tg->global_phase_index = 123456;
                samples fast = noise(509, 3);
                samples plain = fast;
                tonegenerator_process(tg.get(), 5, fast, start, nframes, p_env, 0.5f);
                plain_tonegenerator_process(tg.get(), 5, plain, start, nframes, p_env, 0.5f);
                expect_near(fast, plain,
                            std::to_string(rates.engine) + " Hz, frames from "
                                + std::to_string(start));
            }
}

TEST(ToneGenerator, KeysShareAnOscillator) {
    const auto tg = create(whole_ratios[0], 256);
    tone_generator_add_sustained_oscillator(tg.get(), 3, 0.25f);
    tone_generator_add_sustained_oscillator(tg.get(), 5, 0.5f);
    tone_generator_add_sustained_oscillator(tg.get(), 3, 0.125f);
    EXPECT_EQ(tg->nb_sustained_oscs, 2);
    EXPECT_EQ(tg->sustained_oscillators[0], 3);
    EXPECT_EQ(tg->sustained_oscillators_conductance[0], 0.375f);

    const samples attack(100, 0.5f);
    tone_generator_add_non_sustained_oscillator(tg.get(), 3, 100, 100, attack.data(), 0.5f);
    tone_generator_add_non_sustained_oscillator(tg.get(), 3, 150, 50, nullptr, 0.125f);
    EXPECT_EQ(tg->nb_non_sustained_oscs, 1);
    const samples out = next(tg.get(), 3, 3);
    samples unit(256);
    tonegenerator_process(tg.get(), 3, unit, 0, 256, nullptr, 1.0f);
    for (std::size_t i = 0; i < out.size(); ++i) {
        const float gain = i < 100 || i >= 200 ? 0.375f : i < 150 ? 0.625f : 0.75f;
        ASSERT_EQ(out[i], unit[i] * gain) << "frame " << i;
    }
}

TEST(ToneGenerator, ARangeLeavesTheOtherOscillatorsForLater) {
    const auto tg = create(whole_ratios[0], 64);
    tone_generator_add_sustained_oscillator(tg.get(), 2, 0.5f);
    tone_generator_add_non_sustained_oscillator(tg.get(), 6, 0, 64, nullptr, 0.5f);
    const samples low = next(tg.get(), 0, 2);
    const samples high = next(tg.get(), 3, last_osc);
    EXPECT_NE(low, samples(64));
    EXPECT_NE(high, samples(64));
    EXPECT_EQ(next(tg.get(), 3, 5), samples(64));
    EXPECT_EQ(next(tg.get(), 6, 1000), high) << "past the bank's end";
    samples sum(64);
    std::ranges::transform(low, high, sum.begin(), std::plus());
    EXPECT_EQ(next(tg.get()), sum);
}

TEST(ToneGenerator, ResetForgetsTheBlock) {
    const auto tg = create(whole_ratios[0], 64);
    std::mt19937 random{4};
    contribute(tg.get(), random);
    tonegenerator_reset_sustain(tg.get());
    EXPECT_EQ(next(tg.get()), samples(64));
    for (unsigned osc = 0; osc <= last_osc; ++osc) { // nor is a curve left under a new gain
        tone_generator_add_sustained_oscillator(tg.get(), osc, 0.0f);
        tone_generator_add_non_sustained_oscillator(tg.get(), osc, 0, 0, nullptr, 1.0f);
    }
    EXPECT_EQ(next(tg.get()), samples(64));
}

TEST(ToneGenerator, ARateDropsTheBlockAndRestartsThePhase) {
    const auto tg = create(whole_ratios[0], 64);
    std::mt19937 random{5};
    contribute(tg.get(), random);
    tg->global_phase_index = 1000;
    tonegenerator_set_sampling_rate(tg.get(), 96000);
    EXPECT_EQ(tg->global_phase_index, 0u);
    EXPECT_EQ(next(tg.get()), samples(64));
    expect_plain_block(tg.get(), random, "96000 Hz");
}

TEST(ToneGenerator, ALargerBankGetsCurvesAndASmallerOneKeepsThem) {
    int nb_oscs = 2;
    const tonegenerator_ptr tg{tonegenerator_create("test"), tonegenerator_free};
    tg->get_bank = [&](int) {
        return create_noise_bank(384000, std::vector(static_cast<std::size_t>(nb_oscs), 7));
    };
    tonegenerator_set_block_size(tg.get(), 64);
    for (const int number : {2, 9, 3, 9, 300}) {
        nb_oscs = number;
        tonegenerator_set_sampling_rate(tg.get(), 48000);
        tonegenerator_set_block_size(tg.get(), 32);
        tonegenerator_set_block_size(tg.get(), 64);
        for (unsigned osc = 0; osc < 400; ++osc)
            tone_generator_add_non_sustained_oscillator(tg.get(), osc, 0, 64, nullptr, 0.5f);
        EXPECT_EQ(tg->nb_non_sustained_oscs, number);
        samples fast(64);
        samples plain(64);
        const auto last =
            static_cast<unsigned>(std::min(number, 256)) - 1; // a set holds 256 curves
        tone_generator_next(tg.get(), fast, 0, 1000);
        plain_tone_generator_next(tg.get(), plain, 0, last);
        EXPECT_NE(fast, samples(64)) << number << " oscillators";
        expect_near(fast, plain, std::to_string(number) + " oscillators");
    }
}

TEST(ToneGenerator, WhatItCannotPlayAddsNothing) {
    constexpr float bad_gains[] = {std::numeric_limits<float>::quiet_NaN(),
                                   std::numeric_limits<float>::infinity(),
                                   -std::numeric_limits<float>::infinity()};
    const auto tg = create(whole_ratios[0], 64);
    samples dest(64);
    for (const float gain : bad_gains) {
        tone_generator_add_sustained_oscillator(tg.get(), 0, gain);
        tone_generator_add_non_sustained_oscillator(tg.get(), 0, 0, 64, nullptr, gain);
        tonegenerator_process(tg.get(), 0, dest, 0, 64, nullptr, gain);
    }
    for (const unsigned osc : {last_osc + 1, 0xFFFFFFFFu}) {
        tone_generator_add_sustained_oscillator(tg.get(), osc, 1.0f);
        tone_generator_add_non_sustained_oscillator(tg.get(), osc, 0, 64, nullptr, 1.0f);
        tonegenerator_process(tg.get(), osc, dest, 0, 64, nullptr, 1.0f);
    }
    for (const unsigned start : {64u, 1000u, 0xFFFFFFFFu}) {
        tone_generator_add_non_sustained_oscillator(tg.get(), 0, start, 64, nullptr, 1.0f);
        tonegenerator_process(tg.get(), 0, dest, start, 64, nullptr, 1.0f);
    }
    EXPECT_EQ(dest, samples(64));
    EXPECT_EQ(next(tg.get()), samples(64));

    tone_generator_add_non_sustained_oscillator(tg.get(), 5, 60, 0xFFFFFFFFu, nullptr, 1.0f);
    const samples out = next(tg.get());
    EXPECT_EQ(std::count(out.begin(), out.begin() + 60, 0.0f), 60);
    EXPECT_NE(out[63], 0.0f) << "frames past the block's end are cut, not the frames before";
}

} // namespace
