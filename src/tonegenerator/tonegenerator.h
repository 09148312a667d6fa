#pragma once
/// The tone generator turns "these oscillators sound, with these gains, during these frames" into
/// audio. All oscillators run freely on one frame counter, as in an organ whose generators never
/// stop; a key only opens or closes their paths. During a block the keys' callbacks add gains per
/// oscillator: a constant one where a key sustains through the block, a curve where it does not.
/// Then each oscillator that received anything is read once and multiplied by its summed gains.
///
/// A bank plays its first 256 oscillators. An oscillator number that it does not have, frames
/// outside the block and a gain that is not finite add nothing.

#include "buffers/buffers.h"
#include "oscillators/oscillators.h"
#include "realtime/nonblocking.h"
#include "tonegenerator/wave_reader.h"
#include "tonegenerator/whole_curve.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

using oscillator_set = std::array<std::uint64_t, max_nb_buffers / 64>; ///< a bit an oscillator

struct tonegenerator {
    std::string name;
    int sample_rate = 0;
    int block_size = 0;                            ///< frames in use of each curve
    std::unique_ptr<oscillators_bank> oscs_bank{}; ///< null until a rate is set
    std::uint32_t global_phase_index = 0; ///< frames since the rate was set; the engine advances it
    std::function<oscillators_bank*(int)> get_bank{}; ///< gives the bank of a rate, to be owned

    int nb_sustained_oscs = 0;
    std::vector<int> sustained_oscillators{}; ///< in the order of their first addition
    std::vector<float> sustained_oscillators_conductance{}; ///< by position in that list
    std::vector<int> sustained_positions{}; ///< by oscillator: its position there, or -1

    int nb_non_sustained_oscs = 0;
    std::vector<int> non_sustained_oscillators{}; ///< that have curves in this block
    std::vector<whole_curves> whole{};            ///< by oscillator, where all of them are whole
    std::vector<unsigned char> has_curve{};       ///< by oscillator: 1 where they are laid down
    std::unique_ptr<buffers> p_buffers;           ///< in these
    std::vector<std::span<float>> non_sustained_oscillators_conductance{}; ///< by oscillator

    std::vector<float> held_conductance{}; ///< by oscillator: its gain from block to block, or 0
    oscillator_set held{};                 ///< that have one
    oscillator_set in_block{};             ///< that have a gain or a curve in this block alone

    std::vector<wave_reader> readers{};    ///< by oscillator
    std::vector<wave_scratch> scratches{}; ///< by oscillator: what it plays where that is computed
};

/// Returns a tone generator without a bank; the owner installs get_bank, which never gives null,
/// before the first rate.
[[nodiscard]] tonegenerator* tonegenerator_create(const char* name); ///< [setup]

void tonegenerator_free(tonegenerator* p_tg); ///< null is allowed [setup]

/// Drops what this block has received, takes the rate's bank and restarts the frame counter.
/// [setup]
void tonegenerator_set_sampling_rate(tonegenerator* p_tg, int sampling_rate);

/// Resizes and zeroes the curves. [setup]
void tonegenerator_set_block_size(tonegenerator* p_tg, int block_size);

/// Plays blocks of another length, at most that which was set; the curves stay, zeroed. [audio]
void tonegenerator_use_block_size(tonegenerator* p_tg, int block_size) noexcept NONBLOCKING;

/// Adds to a gain that holds from block to block, until all of them are cleared. [audio]
void tone_generator_add_held_oscillator(tonegenerator* p_tg, unsigned osc,
                                        float conductance) noexcept NONBLOCKING;
void tone_generator_clear_held(tonegenerator* p_tg) noexcept NONBLOCKING; ///< [audio]

/// Adds a gain that holds through the whole block. [audio]
void tone_generator_add_sustained_oscillator(tonegenerator* p_tg, unsigned osc,
                                             float conductance) noexcept NONBLOCKING;

/// Adds p_env[i] * conductance, or the conductance alone without p_env, to the oscillator's curve
/// at frames start_index + i, i < nframes. p_env is read until the block has been rendered. [audio]
void tone_generator_add_non_sustained_oscillator(tonegenerator* p_tg, unsigned oscillator,
                                                 unsigned start_index, unsigned nframes,
                                                 const float* p_env,
                                                 float conductance) noexcept NONBLOCKING;

/// Adds the oscillators osc_start to osc_end inclusive to `dest` of block_size frames, in the order
/// of their numbers, which does not depend on how time is cut into blocks. Returns whether any
/// sounds. Clears nothing: render a range once a block. [audio]
bool tone_generator_next(tonegenerator* p_tg, std::span<float> dest, unsigned osc_start,
                         unsigned osc_end) noexcept NONBLOCKING;

/// Forgets all gains of the block, but not those that hold. [audio]
void tonegenerator_reset_sustain(tonegenerator* p_tg) noexcept NONBLOCKING;

/// Adds one oscillator to `dest`, a block's buffer, at frames start_index + i, i < nframes, with
/// the weight p_env[i] * gain, or the gain alone without p_env. [audio]
void tonegenerator_process(const tonegenerator* p_tg, unsigned oscillator, std::span<float> dest,
                           unsigned start_index, unsigned nframes, const float* p_env,
                           float gain) noexcept NONBLOCKING;
