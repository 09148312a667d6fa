#pragma once
/// Recursive sections of first and second order in direct form II, alone or in a cascade of
/// identical sections.

#include "filter/filter.h"
#include "realtime/nonblocking.h"

/// Returns a filter with zeroed coefficients and state for each rate, none selected yet. Order 1 or
/// 2 of one section; any other order produces nothing. Free with filter_free. [setup]
[[nodiscard]] filter* iir_filter_create(const char* name, int order, unsigned nb_cascaded_stages,
                                        int nb_sample_rate, const int* supported_sample_rate);

/// Copies order + 1 values into the selected set; without one, nothing. [setup]
void iir_filter_set_a_coeffs(filter* p_filter, const float* a_coeffs);

void iir_filter_set_gain(filter* p_filter, float gain); ///< [setup]

/// One section over a block: `z`, `a` and `b` of order + 1 values, `dest` as long as `src` or the
/// same samples. The output replaces `dest`, or joins it with `add`. In this order of operations:
///   w = (x - a1 z1) - a2 z2;  y = ((b0 w + b1 z1) + b2 z2) gain
/// [audio]
void iir_process_first_order(float* z, const float* a, const float* b, std::span<const float> src,
                             std::span<float> dest, int add, float gain) noexcept NONBLOCKING;
void iir_process_second_order(float* z, const float* a, const float* b, std::span<const float> src,
                              std::span<float> dest, int add, float gain) noexcept NONBLOCKING;

/// Ends a state whose every value is below `inaudible`: zeros follow where zeros go in. Returns
/// whether the state is all zeros. [audio]
bool iir_filter_settle(filter* p_filter, float inaudible) noexcept NONBLOCKING;

/// The whole filter over a block. A cascade does nothing with a block longer than its block_size; a
/// filter without a selected rate does nothing at all. [audio]
void iir_filter_process(filter* p_filter, std::span<const float> src, std::span<float> dest,
                        int add) noexcept NONBLOCKING;
