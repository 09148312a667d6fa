#include "filter/iir_design.h"

#include <cmath>
#include <numbers>

namespace {

constexpr double pi = std::numbers::pi;

bool has_rate(const filter* p_filter) { return p_filter->sample_rate > 0; }

float to_float(double x) { return static_cast<float>(x); }

double to_double(float x) { return static_cast<double>(x); }

/// Whether a corner lies within what a rate can have; what is not a number does not.
bool is_below_half(double corner, int sampling_rate) {
    return corner > 0 && corner <= sampling_rate / 2.0;
}

/// `angle` is that whose tangent the transform takes.
first_order_coeffs first_order(double angle, int high) {
    const float c = to_float(1 / std::tan(angle));
    const float a1 = (1 - c) / (1 + c);
    if (high) {
        const float b0 = c / (1 + c);
        return {.b0 = b0, .b1 = -b0, .a1 = a1};
    }
    const float b0 = 1 / (1 + c);
    return {.b0 = b0, .b1 = b0, .a1 = a1};
}

void set_first_order(filter* p_filter, const first_order_coeffs& coeffs) {
    p_filter->b_coeffs[0] = coeffs.b0;
    p_filter->b_coeffs[1] = coeffs.b1;
    p_filter->a_coeffs[1] = coeffs.a1;
}

struct biquad {
    double b0, b1, b2, a0, a1, a2;
};

void set_biquad(filter* p_filter, const biquad& q) {
    const float b[] = {to_float(q.b0), to_float(q.b1), to_float(q.b2)};
    const float a[] = {to_float(q.a0), to_float(q.a1), to_float(q.a2)};
    for (std::size_t i = 0; i < 3; ++i) {
        p_filter->b_coeffs[i] = b[i];
        p_filter->a_coeffs[i] = a[i];
    }
    filter_reset_z_buff(p_filter);
    iir_filter_normalize_coeffs(p_filter);
}

/// 2 pi fc / fs.
double angular_frequency(const filter* p_filter, float fc) {
    return to_double(to_float(2 * pi * to_double(fc) / p_filter->sample_rate));
}

template <typename Design>
void for_each_rate(filter* p_filter, Design design) {
    const int selected = p_filter->sample_rate;
    for (const int rate : p_filter->supported_sample_rate) {
        filter_set_sampling_rate(p_filter, rate);
        design();
    }
    if (selected != -1)
        filter_set_sampling_rate(p_filter, selected);
}

} // namespace

std::optional<first_order_coeffs> iir_rc_first_order_coeffs(float R, float C, int high,
                                                            int sampling_rate) noexcept {
    const double time_constant = to_double(R) * to_double(C);
    if (!is_below_half(1 / (2 * pi * time_constant), sampling_rate))
        return std::nullopt;
    const float T = 1 / static_cast<float>(sampling_rate);
    return first_order(to_double(T) / (2 * time_constant), high);
}

void iir_filter_set_coeff_first_order(filter* p_filter, float fc, int high) {
    if (!has_rate(p_filter) || !is_below_half(to_double(fc), p_filter->sample_rate))
        return;
    const float T = 1 / static_cast<float>(p_filter->sample_rate);
    set_first_order(p_filter, first_order(2 * pi * to_double(fc) * to_double(T), high));
}

void iir_filter_set_coeff_rc_first_order(filter* p_filter, float R, float C, int high) {
    if (!has_rate(p_filter))
        return;
    if (const auto coeffs = iir_rc_first_order_coeffs(R, C, high, p_filter->sample_rate))
        set_first_order(p_filter, *coeffs);
}

void iir_filter_design(filter* p_filter, float fc, float Q, int type) {
    if (!has_rate(p_filter) || p_filter->order != 2)
        return;
    const double w = angular_frequency(p_filter, fc);
    const double sin_w = std::sin(w);
    const double cos_w = std::cos(w);
    const double alpha = sin_w / (2 * to_double(Q));
    biquad q{.b0 = 0, .b1 = 0, .b2 = 0, .a0 = 1 + alpha, .a1 = -2 * cos_w, .a2 = 1 - alpha};
    switch (type) {
    case 0:
        q.b0 = q.b2 = (1 - cos_w) / 2;
        q.b1 = 1 - cos_w;
        break;
    case 1:
        q.b0 = q.b2 = (1 + cos_w) / 2;
        q.b1 = -(1 + cos_w);
        break;
    case 2:
        q.b0 = alpha;
        q.b2 = -alpha;
        break;
    case 3:
        q.b0 = sin_w / 2;
        q.b2 = -sin_w / 2;
        break;
    case 4:
        q.b0 = q.b2 = 1;
        q.b1 = -2 * cos_w;
        break;
    default:
        return;
    }
    set_biquad(p_filter, q);
}

void iir_filter_design_shelf(filter* p_filter, float fc, float Q, float G, int high) {
    if (!has_rate(p_filter) || p_filter->order != 2)
        return;
    const double w = angular_frequency(p_filter, fc);
    const double A = to_double(to_float(std::pow(10.0, to_double(G) / 40)));
    const double beta = to_double(to_float(std::sqrt(A) / to_double(Q)));
    // The low shelf is the high shelf with the sign of the cosine turned.
    const double c = high ? std::cos(w) : -std::cos(w);
    const double s = beta * std::sin(w);
    const double sign = high ? 1 : -1;
    set_biquad(p_filter, {.b0 = A * ((A + 1) + (A - 1) * c + s),
                          .b1 = sign * -2 * A * ((A - 1) + (A + 1) * c),
                          .b2 = A * ((A + 1) + (A - 1) * c - s),
                          .a0 = (A + 1) - (A - 1) * c + s,
                          .a1 = sign * 2 * ((A - 1) - (A + 1) * c),
                          .a2 = (A + 1) - (A - 1) * c - s});
}

void iir_filter_normalize_coeffs(filter* p_filter) {
    const float a0 = p_filter->a_coeffs[0];
    for (float& b : p_filter->b_coeffs)
        b /= a0;
    for (float& a : p_filter->a_coeffs.subspan(1))
        a /= a0;
}

void iir_filter_set_coeff_first_order_multi_rate(filter* p_filter, float fc, int high) {
    for_each_rate(p_filter, [=] { iir_filter_set_coeff_first_order(p_filter, fc, high); });
}

void iir_filter_set_coeff_rc_first_order_multi_rate(filter* p_filter, float R, float C, int high) {
    for_each_rate(p_filter, [=] { iir_filter_set_coeff_rc_first_order(p_filter, R, C, high); });
}

void iir_filter_design_multi_rate(filter* p_filter, float fc, float Q, int type) {
    for_each_rate(p_filter, [=] { iir_filter_design(p_filter, fc, Q, type); });
}

void iir_filter_design_shelf_multi_rate(filter* p_filter, float fc, float Q, float G, int high) {
    for_each_rate(p_filter, [=] { iir_filter_design_shelf(p_filter, fc, Q, G, high); });
}
