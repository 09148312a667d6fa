#include "korvel/fir_brickwall.h"

#include <algorithm>
#include <cmath>
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
    for (std::size_t n = 0; n < nb_fir_brickwall_taps; ++n) {
        EXPECT_NEAR(static_cast<double>(taps()[n]), shape[n] / sum, 5e-8) << "tap " << n;
        EXPECT_FLOAT_EQ(taps()[n], taps()[100 - n]) << "tap " << n;
    }
}

TEST(FirBrickwall, ServesMultiplesOfBothBaseRates) {
    for (int k = 1; k <= 17; ++k)
        for (const int rate : {k * 22050, k * 24000}) {
            const float* p_found = fir_brickwall_find(rate);
            ASSERT_NE(p_found, nullptr) << rate;
            EXPECT_TRUE(std::equal(taps().begin(), taps().end(), p_found)) << rate;
        }
    for (const int rate : {32000, 0, -22050, 22051, 705600})
        EXPECT_EQ(fir_brickwall_find(rate), nullptr) << rate;
}

} // namespace
