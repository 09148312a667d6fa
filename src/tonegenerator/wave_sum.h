#pragma once
/// Adds many waves with their gains: the inner loop of the tone generator.

#include "realtime/nonblocking.h"
#include "tonegenerator/wave_reader.h"

#include <span>

/// An oscillator's samples of one chunk, and the gain that holds through it.
struct gained_wave {
    const float* samples; ///< wave_reader_chunk of them
    float gain;
};

/// Adds the waves, in their order, to at most a chunk's frames. [audio]
void wave_sum_add(std::span<const gained_wave> waves, std::span<float> dest) noexcept NONBLOCKING;
