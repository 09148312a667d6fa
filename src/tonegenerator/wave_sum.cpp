#include "tonegenerator/wave_sum.h"

#include "lanes/lanes.h"

#include <algorithm>
#include <utility>

namespace {

static_assert(wave_reader_chunk % nb_lanes == 0);

template <std::size_t nb>
void add_column(std::span<const gained_wave> waves, std::size_t start, float* sums) {
    lanes column[nb];
    std::memcpy(column, sums + start, sizeof column);
    for (const gained_wave& wave : waves) {
        const float* samples = wave.samples + start;
        for (std::size_t i = 0; i < nb; ++i)
            column[i] += lanes_load(samples + i * nb_lanes) * wave.gain;
    }
    std::memcpy(sums + start, column, sizeof column);
}

/// A last column of fewer lanes, among those that the compiler has laid out.
template <std::size_t... less>
void add_last_column(std::span<const gained_wave> waves, std::size_t start, std::size_t nb,
                     float* sums, std::index_sequence<less...>) {
    (void)((nb == less + 1 && (add_column<less + 1>(waves, start, sums), true)) || ...);
}

void add_columns(std::span<const gained_wave> waves, std::size_t nb, float* sums) {
    std::size_t lane = 0;
    for (; lane + column_lanes <= nb; lane += column_lanes)
        add_column<column_lanes>(waves, lane * nb_lanes, sums);
    add_last_column(waves, lane * nb_lanes, nb - lane, sums,
                    std::make_index_sequence<column_lanes - 1>{});
}

} // namespace

void wave_sum_add(std::span<const gained_wave> waves, std::span<float> dest) noexcept {
    if (dest.size() % nb_lanes == 0) {
        add_columns(waves, dest.size() / nb_lanes, dest.data());
        return;
    }
    wave_scratch sums{};
    std::ranges::copy(dest, sums.begin());
    add_columns(waves, dest.size() / nb_lanes + 1, sums.data());
    std::copy_n(sums.begin(), dest.size(), dest.begin());
}
