#include "vibrato/vibrato.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double fixed_point_one = 65536.0;
constexpr std::uint32_t fraction_mask = 0xFFFFu;
constexpr std::uint32_t stator_mask = (1u << 28) - 1;
constexpr std::uint32_t ring_mask = vibrato_ring_long - 1;

} // namespace

vibrato* vibrato_create(unsigned nb_levels, const float* amp_levels, const char* name) {
    auto* p_vibrato = new vibrato{
        .name = name, .nb_levels = nb_levels, .offset_table{nb_levels, vibrato_offset_table{}}};
    for (unsigned level = 0; level < nb_levels; ++level)
        vibrato_set_depth(p_vibrato, level, amp_levels[level]);
    return p_vibrato;
}

void vibrato_free(vibrato* p_vibrato) { delete p_vibrato; }

void vibrato_set_depth(vibrato* p_vibrato, unsigned level, float depth) {
    vibrato_offset_table& table = p_vibrato->offset_table[level];
    for (std::size_t i = 0; i < table.size(); ++i) {
        const double angle =
            2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(table.size());
        const double offset = 1 + static_cast<double>(depth) * (1 + std::sin(angle));
        table[i] = static_cast<std::uint32_t>(fixed_point_one * offset);
    }
}

void vibrato_set_sampling_rate(vibrato* p_vibrato, int sampling_rate) {
    p_vibrato->sample_rate = static_cast<unsigned>(sampling_rate);
    vibrato_update_stator_increment(p_vibrato);
}

void vibrato_set_block_size(vibrato* p_vibrato, int block_size) {
    p_vibrato->block_size = static_cast<unsigned>(block_size);
}

void vibrato_update_stator_increment(vibrato* p_vibrato) {
    if (p_vibrato->sample_rate == 0) {
        p_vibrato->stator_increment = 0;
        return;
    }
    const float table_step = static_cast<float>(vibrato_table_long) * p_vibrato->vib_freq
                             / static_cast<float>(p_vibrato->sample_rate);
    // 65535 and not the fixed point's 65536 is part of the sound: 6 Hz turns at 5.99974 Hz at 48
    // kHz.
    p_vibrato->stator_increment =
        static_cast<std::uint32_t>(static_cast<double>(table_step) * 65535.0);
}

void vibrato_process(vibrato* p_vibrato, std::span<const float> in, std::span<float> out) noexcept {
    p_vibrato->current_level = 0;
    p_vibrato->nb_silent = 0;
    const vibrato_offset_table& table = p_vibrato->offset_table[0];
    float* const ring = p_vibrato->p_internal_buffer.data();
    const std::uint32_t increment = p_vibrato->stator_increment;
    std::uint32_t stator = p_vibrato->stator;
    std::uint32_t out_pos = p_vibrato->out_pos;

    for (std::size_t n = 0; n < in.size(); ++n) {
        const std::uint32_t pos = (out_pos << 16) + table[stator >> 16];
        stator = (stator + increment) & stator_mask;

        const float x = in[n];
        const std::uint32_t slot = (pos >> 16) & ring_mask;
        const float share = static_cast<float>(pos & fraction_mask) * 0x1p-16f;
        const float next_share = share * x;
        ring[slot] += x - next_share;
        ring[(slot + 1) & ring_mask] += next_share;

        out[n] = ring[out_pos];
        ring[out_pos] = 0.0f;
        out_pos = (out_pos + 1) & ring_mask;
    }

    p_vibrato->stator = stator;
    p_vibrato->out_pos = out_pos;
}

void vibrato_process_silence(vibrato* p_vibrato, std::span<float> out) noexcept {
    std::ranges::fill(out, 0.0f);
    if (vibrato_is_empty(p_vibrato))
        return vibrato_skip(p_vibrato, out.size());
    const std::size_t nb_silent = p_vibrato->nb_silent;
    vibrato_process(p_vibrato, out, out);
    p_vibrato->nb_silent = nb_silent + out.size();
}

void vibrato_clear(vibrato* p_vibrato) noexcept {
    p_vibrato->p_internal_buffer.fill(0.0f);
    p_vibrato->nb_silent = vibrato_ring_long;
}

void vibrato_skip(vibrato* p_vibrato, std::size_t nb_frames) noexcept {
    const auto steps = static_cast<std::uint32_t>(nb_frames);
    p_vibrato->stator = (p_vibrato->stator + steps * p_vibrato->stator_increment) & stator_mask;
    p_vibrato->out_pos = (p_vibrato->out_pos + steps) & ring_mask;
}
