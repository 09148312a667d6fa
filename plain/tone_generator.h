#pragma once
/// The tone generator in its plain form: every oscillator's time runs in seconds, in double
/// precision, and its table is read by linear interpolation at the time's position. [setup]

#include "tonegenerator/tonegenerator.h"

#include <cstdint>
#include <span>

/// Reads one looped table frame by frame, from frame `phase` of an engine rate on.
class plain_wave_reader {
public:
    plain_wave_reader(const oscillator& osc, int sampling_rate, std::uint32_t phase);

    double next();

private:
    std::span<const float> table;
    double table_rate; ///< Hz
    double cycle;      ///< seconds that the table lasts
    double frame;      ///< seconds
    double time;       ///< seconds within the cycle
};

/// What tone_generator_next does. The phase counter is read at the block's start, so a block that
/// crosses its wrap goes on without a step.
void plain_tone_generator_next(const tonegenerator* p_tg, std::span<float> dest, unsigned osc_start,
                               unsigned osc_end);

/// What tonegenerator_process does, for frames within `dest`.
void plain_tonegenerator_process(const tonegenerator* p_tg, unsigned oscillator,
                                 std::span<float> dest, unsigned start_index, unsigned nframes,
                                 const float* p_env, float gain);
