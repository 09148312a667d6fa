#pragma once
/// Coefficient designs of the recursive filters. Each works on the selected rate's set; without a
/// selected rate it does nothing. The designs named multi_rate fill every supported rate's set in
/// turn and then select the old rate again, or, where none was selected, stay on the last.
///
/// Angles, gains and stored coefficients are single precision; the trigonometric and exponential
/// functions are evaluated in double. Frequencies in Hz, G in dB, R in ohms, C in farads. [setup]

#include "filter/filter.h"
#include "realtime/nonblocking.h"

#include <optional>

struct first_order_coeffs {
    float b0, b1, a1;
};

/// The RC network by the bilinear transform, its corner 1 / (2 pi R C) pre-warped exactly;
/// low-pass, or high-pass with `high`. Returns nothing when the corner lies above half the rate.
/// [any]
std::optional<first_order_coeffs> iir_rc_first_order_coeffs(float R, float C, int high,
                                                            int sampling_rate) noexcept NONBLOCKING;

/// First order from a cut-off. The angle is 2 pi fc / fs, twice the pre-warped bilinear
/// transform's, so the corner lies near 2 fc; the instrument's voicing relies on it. A cut-off
/// above fs / 2 leaves the set unchanged, as in the RC design.
void iir_filter_set_coeff_first_order(filter* p_filter, float fc, int high);
void iir_filter_set_coeff_rc_first_order(filter* p_filter, float R, float C, int high);

/// Biquads of R. Bristow-Johnson's "Audio EQ Cookbook". Type 0 low-pass, 1 high-pass, 2 band-pass
/// of 0 dB peak, 3 band-pass of peak gain Q, 4 notch; any other type, or a filter of another order,
/// leaves the set unchanged. Clears the rate's state, as does the shelf.
void iir_filter_design(filter* p_filter, float fc, float Q, int type);

/// Shelf of the same source with beta = sqrt(A) / Q: high shelf, or low shelf with `high` 0.
void iir_filter_design_shelf(filter* p_filter, float fc, float Q, float G, int high);

/// Divides the set, but for a0, by a0.
void iir_filter_normalize_coeffs(filter* p_filter);

void iir_filter_set_coeff_first_order_multi_rate(filter* p_filter, float fc, int high);
void iir_filter_set_coeff_rc_first_order_multi_rate(filter* p_filter, float R, float C, int high);
void iir_filter_design_multi_rate(filter* p_filter, float fc, float Q, int type);
void iir_filter_design_shelf_multi_rate(filter* p_filter, float fc, float Q, float G, int high);
