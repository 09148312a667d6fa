#include "filter/iir_design.h"

#include "tests/filter/filter_ptr.h"

#include <cmath>
#include <complex>
#include <functional>
#include <gtest/gtest.h>
#include <numbers>

namespace {

using design = std::function<void(filter*)>;

design first_order(float fc, int high) {
    return [=](filter* f) { iir_filter_set_coeff_first_order_multi_rate(f, fc, high); };
}

design rc(float R, float C, int high) {
    return [=](filter* f) { iir_filter_set_coeff_rc_first_order_multi_rate(f, R, C, high); };
}

design biquad(float fc, float Q, int type) {
    return [=](filter* f) { iir_filter_design_multi_rate(f, fc, Q, type); };
}

design shelf(float fc, float Q, float G, int high) {
    return [=](filter* f) { iir_filter_design_shelf_multi_rate(f, fc, Q, G, high); };
}

/// |H| at a frequency, of the response to an impulse.
double magnitude(filter* f, double frequency) {
    std::vector<float> response(8192);
    response[0] = 1;
    filter_reset_z_buff(f);
    iir_filter_process(f, response, response, 0);
    std::complex<double> sum = 0;
    for (std::size_t n = 0; n < response.size(); ++n)
        sum +=
            std::polar(static_cast<double>(response[n]),
                       -2 * std::numbers::pi * frequency * static_cast<double>(n) / f->sample_rate);
    return std::abs(sum);
}

TEST(IirDesign, CornersThatNoRateHasLeaveTheFilterAsItWas) {
    const struct {
        const char* name;
        design design_all;
        int rate;
    } rows[] = {{"rc above half the rate", rc(6000, 2.2e-9f, 0), 22050},
                {"fc above half the rate", first_order(12000, 0), 22050},
                {"rc of no bound", rc(INFINITY, 2.2e-9f, 0), 48000},
                {"fc 0", first_order(0, 0), 48000}};
    for (const auto& row : rows) {
        const filter_ptr f = create_iir(1);
        filter_set_sampling_rate(f.get(), row.rate);
        f->b_coeffs[1] = 0.25f;
        row.design_all(f.get());
        EXPECT_EQ(f->b_coeffs[0], 0.0f) << row.name;
        EXPECT_EQ(f->b_coeffs[1], 0.25f) << row.name;
    }
}

TEST(IirDesign, MagnitudesFollowTheClosedForms) {
    constexpr double tolerance = 3e-4; // of coefficients rounded to single, with poles beside 1
    constexpr double half_power = std::numbers::sqrt2 / 2;
    constexpr double rc_corner = 1 / (2 * std::numbers::pi * 1e4 * 1e-8);
    constexpr double shelf_gain = 7.943282347242816; // 18 dB; half of it in dB at the corner
    const struct {
        const char* name;
        design design_all;
        int order;
        double corner, at_zero, at_corner, at_half_rate;
    } rows[] = {
        {"first-order low-pass", first_order(400, 0), 1, 800, 1, half_power, 0},
        {"first-order high-pass", first_order(400, 1), 1, 800, 0, half_power, 1},
        {"RC low-pass", rc(1e4f, 1e-8f, 0), 1, rc_corner, 1, half_power, 0},
        {"RC high-pass", rc(1e4f, 1e-8f, 1), 1, rc_corner, 0, half_power, 1},
        {"low-pass", biquad(1000, 4, 0), 2, 1000, 1, 4, 0},
        {"high-pass", biquad(1000, 4, 1), 2, 1000, 0, 4, 1},
        {"band-pass of 0 dB", biquad(1000, 4, 2), 2, 1000, 0, 1, 0},
        {"band-pass of Q", biquad(1000, 4, 3), 2, 1000, 0, 4, 0},
        {"notch", biquad(1000, 4, 4), 2, 1000, 1, 0, 1},
        {"high shelf", shelf(1000, 0.7f, 18, 1), 2, 1000, 1, std::sqrt(shelf_gain), shelf_gain},
        {"low shelf", shelf(1000, 0.7f, 18, 0), 2, 1000, shelf_gain, std::sqrt(shelf_gain), 1},
    };
    for (const auto& row : rows) {
        const filter_ptr f = create_iir(row.order);
        iir_filter_design(f.get(), 1000, 4, 0); // no rate is selected: nothing to design
        row.design_all(f.get());
        EXPECT_EQ(f->sample_rate, filter_rates.back()) << row.name;
        for (const int rate : filter_rates) {
            filter_set_sampling_rate(f.get(), rate);
            row.design_all(f.get()); // the selection stays
            for (const auto& [frequency, wanted] : {std::pair{0.0, row.at_zero},
                                                    {row.corner, row.at_corner},
                                                    {rate / 2.0, row.at_half_rate}})
                EXPECT_NEAR(magnitude(f.get(), frequency), wanted, tolerance)
                    << row.name << " at " << frequency << " of " << rate << " Hz";
        }
    }
}

} // namespace
