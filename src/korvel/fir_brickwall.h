#pragma once
/// The brick-wall low-pass that keeps the waveform banks from aliasing: a Hamming-windowed sinc of
/// 101 taps whose cut-off is one third of the rate, for each of 34 rates.

#include <array>
#include <cstddef>

constexpr std::size_t nb_fir_brickwall_sampling_rates = 34;
constexpr int fir_brickwall_order = 100;
constexpr std::size_t nb_fir_brickwall_taps = fir_brickwall_order + 1;

/// Hz: 22050 k and 24000 k for k = 1 to 17, in this order.
extern const std::array<int, nb_fir_brickwall_sampling_rates> fir_brickwall_sampling_rates;

/// A rate: its taps. They are the same for all: the cut-off follows the rate.
extern const std::array<const float*, nb_fir_brickwall_sampling_rates> fir_brickwall_coeffs;

/// Returns the taps of exactly this rate, or null. [any]
const float* fir_brickwall_find(int sampling_rate);
