#pragma once
/// A small pseudo-random generator for component tolerances and starting phases: a 32-bit linear
/// congruential generator whose draws are bits 16 to 30 of its state. The engine owns one, so that
/// instances do not disturb each other and one seed gives one instrument on every system.

#include <cstdint>

struct random15 {
    std::uint32_t state = 0; ///< the seed, before the first draw
};

constexpr int random15_max = 32767;

/// Returns the next draw, 0 to random15_max. [setup]
inline int random15_next(random15& random) noexcept {
    random.state = random.state * 214013u + 2531011u;
    return static_cast<int>((random.state >> 16) & 0x7FFFu);
}

/// Returns the next draw as a fraction of random15_max, in single precision: [0, 1]. [setup]
inline float random15_unit(random15& random) noexcept {
    return static_cast<float>(random15_next(random)) / static_cast<float>(random15_max);
}
