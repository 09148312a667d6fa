#pragma once
/// Several recursive filters at once. A recursion waits for its own last output, so one filter
/// leaves the processor idle most of the time; as lanes of a vector, and in one loop, filters run
/// side by side in the time of the slowest. Every lane keeps the order of operations that its
/// filter has alone: the samples are the same.

#include "filter/filter.h"
#include "lanes/lanes.h"
#include "realtime/nonblocking.h"

#include <cstddef>

/// A cascade of two first-order sections over a block, replacing what `dest` held.
struct iir_cascade_run {
    filter* p_filter;
    std::span<const float> src;
    std::span<float> dest;
};

/// Runs up to nb_lanes filters of one section each over `src` and writes the sum of their
/// outputs, in their order, to `sum`; then two cascades, whose sources may be `sum`. All blocks
/// have one length and all filters a selected set. The same as iir_filter_process for one after
/// the other. [audio]
void iir_filters_process(std::span<filter* const> filters, std::span<const float> src,
                         std::span<float> sum, const iir_cascade_run& first,
                         const iir_cascade_run& second) noexcept NONBLOCKING;
