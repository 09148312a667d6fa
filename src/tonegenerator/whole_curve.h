#pragma once
/// A whole curve is a curve of gains that runs through a block from its first frame to its last, as
/// that of a key in attack or release mostly does. Such curves need not be laid down frame by
/// frame: they are summed where their table lies, in registers.

#include "realtime/nonblocking.h"

#include <array>
#include <cstddef>
#include <span>

struct whole_curve {
    const float* table;
    float conductance; ///< the gain at frame i of the block is table[i] * conductance
};

/// Those of one oscillator in a block, in the order of their addition. Room for the keys that share
/// an oscillator.
struct whole_curves {
    std::array<whole_curve, 4> curves;
    std::size_t nb_curves = 0;
};

/// Writes samples[i] * (the curves' sum at frame start + i + gain) to dest[i], i < dest.size().
/// `dest` may be the samples. [audio]
void whole_curves_apply(const whole_curves& whole, std::size_t start, float gain,
                        const float* samples, std::span<float> dest) noexcept NONBLOCKING;
