#pragma once
/// The compiled-in description of the tone generator: names and nominal frequencies of its 84
/// notes, and, for each rate, the frequency to which each is tuned.

#include <array>

struct oscillator_spec {
    float root_freq = 0; ///< nominal frequency in Hz
    unsigned nb_harmonics = 0;
    float damp = 1;
    float harmonic_numbers[32] = {};
    float harmonic_phases[32] = {};
    float harmonic_amps[32] = {};
    char name[3] = {}; ///< no terminating zero
};

static_assert(sizeof(oscillator_spec) == 400);

constexpr int tavine_nb_rates = 6;
constexpr int tavine_nb_oscs = 84; ///< "C_2" to "B_8"

extern const std::array<int, tavine_nb_rates> tavine_sampling_rates; ///< Hz, rising

extern const std::array<oscillator_spec, tavine_nb_oscs> tavine_oscillator_specs;

/// A frequency f' in Hz and a whole number of periods of it that fill a whole number of frames,
/// at most one second: of all such frequencies the one nearest to equal temperament.
using tuned_frequency = std::array<float, 2>;

/// By rate index and oscillator.
extern const std::array<std::array<tuned_frequency, tavine_nb_oscs>, tavine_nb_rates>
    tavine_optimized_oscs_freqs;
