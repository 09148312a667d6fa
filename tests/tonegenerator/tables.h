#pragma once
/// What the tone generator's tests play, and at which rates.

#include "tests/noise_bank.h"

/// Shorter than a chunk, odd and even, and the longest of the instrument.
constexpr int table_lengths[] = {1, 7, 64, 84, 168, 801, 872, 2000, 5393};

struct rate_pair {
    int engine, table; ///< Hz
};

/// Whole ratios, down to 1, and then others.
constexpr rate_pair rate_pairs[] = {
    {48000, 384000},  {44100, 352800}, {96000, 384000}, {192000, 384000}, {11025, 176400},
    {384000, 384000}, {32000, 176400}, {8000, 176400},  {1000, 176400},   {1000000, 384000}};
