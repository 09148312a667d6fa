#pragma once
/// Direct-form convolution over a circular delay line.

#include "filter/filter.h"
#include "realtime/nonblocking.h"

/// Returns a filter of order + 1 zero taps for each rate, none selected yet. Free with filter_free.
/// [setup]
[[nodiscard]] filter* fir_filter_create(const char* name, int order, int nb_sample_rate,
                                        const int* supported_sample_rate);

/// Filters `src` into `dest`, of the same length; they may be the same samples. The output replaces
/// what `dest` held, whatever `add` and the filter's gain say. Sums run from the newest sample to
/// the oldest, in single precision. Without a selected rate nothing happens. [audio]
void fir_filter_process(filter* p_filter, std::span<const float> src, std::span<float> dest,
                        int add) noexcept NONBLOCKING;
