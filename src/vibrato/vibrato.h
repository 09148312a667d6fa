#pragma once
/// The vibrato wobbles the pitch by a delay whose length swings as a sine. It works in reverse of a
/// usual modulated delay line: each input sample is laid down, shared between two neighbouring
/// slots, at a moving position ahead of a read position that advances steadily; an output sample is
/// the slot at the read position, which is then cleared.

#include "realtime/nonblocking.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

constexpr std::size_t vibrato_table_long = 4096;
constexpr std::size_t vibrato_ring_long = 2048;

using vibrato_offset_table = std::array<std::uint32_t, vibrato_table_long>;

struct vibrato {
    std::string name;
    unsigned sample_rate = 0; ///< Hz; 0 until set
    unsigned block_size = 0;
    float vib_freq = 6.0f; ///< Hz
    unsigned nb_levels;
    unsigned current_level = 0;         ///< processing always uses level 0
    std::uint32_t stator = 0;           ///< phase, 28 bits; bits 16 to 27 index the offset table
    std::uint32_t stator_increment = 0; ///< phase step a sample
    std::uint32_t out_pos = 1023;       ///< read position in the ring
    unsigned chorus_mode = 0;           ///< not consulted
    std::vector<vibrato_offset_table> offset_table; ///< a level: write offsets, 16.16 fixed point
    std::array<float, vibrato_ring_long> p_internal_buffer{};
    std::size_t nb_silent = vibrato_ring_long; ///< zeros since sound came in; the ring's length of
                                               ///< them leaves it all zeros
};

/// Returns a vibrato with a depth for each of `nb_levels` levels, at least one: the delay swings
/// between 1 and 1 + 2 * depth frames, which must stay below the ring's length. Without a rate the
/// delay stands at 1 + depth frames. [setup]
[[nodiscard]] vibrato* vibrato_create(unsigned nb_levels, const float* amp_levels,
                                      const char* name);

void vibrato_free(vibrato* p_vibrato); ///< null is allowed [setup]

/// Gives a level another depth; phase and ring go on. [setup]
void vibrato_set_depth(vibrato* p_vibrato, unsigned level, float depth);

void vibrato_set_sampling_rate(vibrato* p_vibrato, int sampling_rate); ///< [setup]
void vibrato_set_block_size(vibrato* p_vibrato, int block_size);       ///< [setup]

/// Recomputes the phase step from frequency and rate; rate 0 stops the phase. [setup]
void vibrato_update_stator_increment(vibrato* p_vibrato);

/// Runs a block from `in` into `out`, of the same length; they may be the same samples. [audio]
void vibrato_process(vibrato* p_vibrato, std::span<const float> in,
                     std::span<float> out) noexcept NONBLOCKING;

/// The same for a block of zeros. [audio]
void vibrato_process_silence(vibrato* p_vibrato, std::span<float> out) noexcept NONBLOCKING;

/// Empties the ring. [audio]
void vibrato_clear(vibrato* p_vibrato) noexcept NONBLOCKING;

/// Whether zeros come out as long as zeros go in. [audio]
inline bool vibrato_is_empty(const vibrato* p_vibrato) noexcept NONBLOCKING {
    return p_vibrato->nb_silent >= vibrato_ring_long;
}

/// Goes on by a block of zeros that nobody asks for. It must be empty. [audio]
void vibrato_skip(vibrato* p_vibrato, std::size_t nb_frames) noexcept NONBLOCKING;
