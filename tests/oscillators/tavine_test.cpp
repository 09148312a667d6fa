#include "oscillators/tavine.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

double equal_tempered(std::size_t osc) {
    return 440 * std::exp2((static_cast<double>(osc) - 33) / 12);
}

/// The rule by trial: of all P * rate / N, N <= rate, the nearest, of equals the smallest P.
tuned_frequency tune_by_trial(double wanted, int rate) {
    double best = 0, best_p = 0;
    for (double p = 1; p <= wanted + 1; ++p) {
        const double below = std::floor(p * rate / wanted);
        for (double n : {below, below + 1}) {
            const double f = p * rate / n;
            if (n <= rate && std::abs(f - wanted) < std::abs(best - wanted))
                best = f, best_p = p;
        }
    }
    return {static_cast<float>(best), static_cast<float>(best_p)};
}

TEST(Tavine, EveryFrequencyIsTheBestOfItsRateUnlessGiven) {
    for (std::size_t r = 0; r < tavine_nb_rates; ++r)
        for (std::size_t osc = 0; osc < tavine_nb_oscs; ++osc) {
            const bool is_given = r == 2 && osc == 60;
            const auto expected =
                is_given ? tuned_frequency{2093.00439453125f, 647.0f}
                         : tune_by_trial(equal_tempered(osc), tavine_sampling_rates[r]);
            ASSERT_EQ(tavine_optimized_oscs_freqs[r][osc], expected)
                << "oscillator " << osc << " at " << tavine_sampling_rates[r];
        }
}

} // namespace
