#pragma once
/// The filtered bank in its plain form: a square wave from the sine's sign, sample by sample, and
/// four filters of the filter module one after the other. [setup]

#include "oscillators/oscillators.h"
#include "random15/random15.h"

/// What korvel_bank_filtered returns for an engine rate, from the same draws. Free with
/// oscillators_bank_free.
[[nodiscard]] oscillators_bank* plain_bank_filtered(int sampling_rate, random15& random);
