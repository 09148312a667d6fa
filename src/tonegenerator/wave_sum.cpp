#include "tonegenerator/wave_sum.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t lane_frames = 4;
using lanes = float __attribute__((vector_size(lane_frames * sizeof(float))));

/// The sums of a column stay in registers while all waves pass.
constexpr std::size_t column_lanes = 8;
constexpr std::size_t column_frames = column_lanes * lane_frames;
static_assert(wave_reader_chunk % column_frames == 0);

lanes load(const float* samples) {
    lanes loaded;
    std::memcpy(&loaded, samples, sizeof loaded);
    return loaded;
}

void add_column(std::span<const gained_wave> waves, std::size_t start, float* sums) {
    lanes column[column_lanes];
    std::memcpy(column, sums + start, sizeof column);
    for (const gained_wave& wave : waves) {
        const float* samples = wave.samples + start;
        for (std::size_t i = 0; i < column_lanes; ++i)
            column[i] += load(samples + i * lane_frames) * wave.gain;
    }
    std::memcpy(sums + start, column, sizeof column);
}

void add_columns(std::span<const gained_wave> waves, std::size_t nframes, float* sums) {
    for (std::size_t start = 0; start < nframes; start += column_frames)
        add_column(waves, start, sums);
}

} // namespace

void wave_sum_add(std::span<const gained_wave> waves, std::span<float> dest) noexcept {
    if (dest.size() == wave_reader_chunk) {
        add_columns(waves, dest.size(), dest.data());
        return;
    }
    wave_scratch sums{};
    std::copy(dest.begin(), dest.end(), sums.begin());
    add_columns(waves, dest.size(), sums.data());
    std::copy_n(sums.begin(), dest.size(), dest.begin());
}
