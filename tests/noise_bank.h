#pragma once
/// Banks of noise, in whose tables every sample tells where it was read.

#include "oscillators/oscillators.h"
#include "tests/noise.h"

#include <span>

/// One table of each length. Free with oscillators_bank_free.
inline oscillators_bank* create_noise_bank(int table_rate, std::span<const int> lengths) {
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
