#pragma once
/// What the tone generator's tests play.

#include "oscillators/oscillators.h"
#include "tests/noise.h"

/// A bank of noise, in which every sample tells where it was read, in tables of telling lengths:
/// shorter than a chunk, odd and even, and the longest of the instrument.
inline oscillators_bank* create_noise_bank(int table_rate) {
    constexpr int lengths[] = {1, 7, 64, 84, 168, 801, 872, 2000, 5393};
    auto* p_bank = new oscillators_bank{.nb_oscs = 0, .oscs = {}, .name = "noise"};
    for (const int length : lengths) {
        const auto number = static_cast<unsigned>(p_bank->nb_oscs++);
        p_bank->oscs.push_back(
            {.wav = {noise(static_cast<std::size_t>(length), number), length},
             .number = number,
             .nb_periods = 1,
             .root_freq = static_cast<float>(table_rate) / static_cast<float>(length),
             .name = "...",
             .sample_rate = static_cast<unsigned>(table_rate)});
    }
    return p_bank;
}

constexpr unsigned noise_bank_last_osc = 8;

struct rate_pair {
    int engine, table; ///< Hz
};

/// Whole ratios, the last down to 1, and others.
constexpr rate_pair whole_ratios[] = {{48000, 384000},  {44100, 352800}, {96000, 384000},
                                      {192000, 384000}, {11025, 176400}, {384000, 384000}};
constexpr rate_pair other_ratios[] = {
    {32000, 176400}, {8000, 176400}, {1000, 176400}, {1000000, 384000}};
