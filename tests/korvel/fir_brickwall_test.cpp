#include "korvel/fir_brickwall.h"

#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <numbers>
#include <span>

namespace {

constexpr double pi = std::numbers::pi;

std::span<const float> taps() { return {fir_brickwall_coeffs[0], nb_fir_brickwall_taps}; }

TEST(FirBrickwall, TapsAreAWindowedSincOfUnitGain) {
    double shape[nb_fir_brickwall_taps];
    double sum = 0;
    for (int n = 0; n <= 100; ++n) {
        const double x = 2.0 / 3 * (n - 50); // of sin(pi x) / (pi x)
        const double sinc = n == 50 ? 1 : std::sin(pi * x) / (pi * x);
        shape[n] = (0.54 - 0.46 * std::cos(2 * pi * n / 100)) * sinc;
        sum += shape[n];
    }
    double unit_gain = 0;
    for (std::size_t n = 0; n < nb_fir_brickwall_taps; ++n) {
        EXPECT_NEAR(static_cast<double>(taps()[n]), shape[n] / sum, 5e-8) << "tap " << n;
        EXPECT_FLOAT_EQ(taps()[n], taps()[100 - n]) << "tap " << n;
        unit_gain += static_cast<double>(taps()[n]);
    }
    EXPECT_NEAR(unit_gain, 1, 1e-7);
}

TEST(FirBrickwall, TellingTaps) {
    const std::pair<std::size_t, float> rows[] = {{50, 0.66685963f},  {49, 0.27549395f},
                                                  {48, -0.13737203f}, {47, 0.0f},
                                                  {46, 0.067939818f}, {0, -0.00044119079f}};
    for (const auto& [n, tap] : rows)
        EXPECT_NEAR(taps()[n], tap, 1e-16f + 6e-8f * std::fabs(tap)) << "tap " << n;
}

TEST(FirBrickwall, ResponseFallsAtAThirdOfTheRate) {
    const auto decibels = [](double share_of_rate) {
        std::complex<double> response = 0;
        for (std::size_t n = 0; n < nb_fir_brickwall_taps; ++n)
            response += static_cast<double>(taps()[n])
                        * std::polar(1.0, -2 * pi * share_of_rate * static_cast<double>(n));
        return 20 * std::log10(std::abs(response));
    };
    EXPECT_NEAR(decibels(0.3295), -3, 0.2);
    EXPECT_NEAR(decibels(0.3335), -6, 0.2);
    for (double share = 0; share < 0.31; share += 0.002)
        EXPECT_NEAR(decibels(share), 0, 0.05) << share;
    for (double share = 0.36; share <= 0.5; share += 0.002)
        EXPECT_LT(decibels(share), -50) << share;
}

TEST(FirBrickwall, RatesAreFoundExactly) {
    constexpr int listed[] = {22050,  24000,  44100,  48000,  66150,  72000,  88200,
                              96000,  110250, 120000, 132300, 144000, 154350, 168000,
                              176400, 192000, 198450, 216000, 220500, 240000, 242550,
                              264000, 264600, 288000, 286650, 312000, 308700, 336000,
                              330750, 360000, 352800, 384000, 374850, 408000};
    EXPECT_TRUE(std::ranges::equal(fir_brickwall_sampling_rates, listed));
    for (std::size_t i = 0; i < nb_fir_brickwall_sampling_rates; ++i) {
        EXPECT_EQ(fir_brickwall_find(listed[i]), fir_brickwall_coeffs[i]) << listed[i];
        EXPECT_TRUE(
            std::ranges::equal(std::span(fir_brickwall_coeffs[i], nb_fir_brickwall_taps), taps()))
            << listed[i];
    }
    for (const int rate : {32000, 0, -22050, 22051, 705600})
        EXPECT_EQ(fir_brickwall_find(rate), nullptr) << rate;
}

} // namespace
