#pragma once
/// A wave reader plays one looped table at the engine's rate: its sample at frame P is the table's
/// value at position (P * table rate / engine rate) mod length, whatever was read before, so that
/// blocks join without a phase step however they are cut.
///
/// The table rate is nearly always a whole multiple m of the engine rate. Then the positions are
/// the whole numbers (m P) mod L, and the table is laid out once more in the order in which it will
/// be played: w[j] = s[(m j) mod L], which repeats after N = L / gcd(m, L). Reading is then
/// copying. Any other ratio interpolates linearly between neighbours.

#include "oscillators/oscillators.h"
#include "realtime/nonblocking.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

constexpr std::size_t wave_reader_chunk = 64; ///< most frames of one read

using wave_scratch = std::array<float, wave_reader_chunk>;

struct wave_reader {
    std::vector<float> samples; ///< N in playing order and the first chunk again; or the table
    std::uint32_t loop_long;    ///< N; 0: the ratio is not whole
    double ratio;               ///< table rate / engine rate
};

/// Lays out an oscillator's table for an engine rate above 0. [setup]
[[nodiscard]] wave_reader wave_reader_create(const oscillator& osc, int sampling_rate);

/// Fills `scratch` with the samples of a table whose ratio is not whole. [audio]
void wave_reader_interpolate(const wave_reader& reader, std::uint32_t phase,
                             wave_scratch& scratch) noexcept NONBLOCKING;

/// Returns a chunk's samples from frame `phase` on. They lie in the reader, or in `scratch`.
/// [audio]
inline const float* wave_reader_read(const wave_reader& reader, std::uint32_t phase,
                                     wave_scratch& scratch) noexcept NONBLOCKING {
    if (reader.loop_long > 0)
        return &reader.samples[phase % reader.loop_long];
    wave_reader_interpolate(reader, phase, scratch);
    return scratch.data();
}
