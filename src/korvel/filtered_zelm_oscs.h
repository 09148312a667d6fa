#pragma once
/// Fills silent oscillator banks with what the instrument's generators make: a square wave, band
/// limited, through three RC networks whose parts scatter within their tolerances from one
/// oscillator to the next, from a random phase. Functions are [setup].

#include "oscillators/oscillators.h"
#include "random15/random15.h"

/// The rates that have a bank of their own: 22050, 44100 and 48000 Hz.
/// Returns the one of them whose bank serves a rate: itself; the one that it is 2 or 4 times of;
/// for any other rate the nearest.
int korvel_bank_rate(int sampling_rate);

/// Fills every table of the bank, seven draws an oscillator, and returns the bank. A bank whose
/// table rate has no brick-wall filter stays silent.
oscillators_bank* zelm_bank_filtered(oscillators_bank* osc_bank, random15& random);

/// Returns the instrument's bank for any engine rate. Free with oscillators_bank_free.
[[nodiscard]] oscillators_bank* korvel_bank_filtered(int sampling_rate, random15& random);
