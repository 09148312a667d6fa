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

TEST(Tavine, EveryFrequencyIsTheBestOfItsRate) {
    for (std::size_t r = 0; r < tavine_nb_rates; ++r)
        for (std::size_t osc = 0; osc < tavine_nb_oscs; ++osc) {
            if (r == 2 && osc == 60)
                continue; // given, see below
            const auto expected = tune_by_trial(equal_tempered(osc), tavine_sampling_rates[r]);
            ASSERT_EQ(tavine_optimized_oscs_freqs[r][osc], expected)
                << "oscillator " << osc << " at " << tavine_sampling_rates[r];
        }
}

TEST(Tavine, GivenRowsHold) {
    for (auto [r, osc, f, p] : {std::tuple{0u, 0u, 65.40637969970703f, 65.0f},
                                {0u, 33u, 440.0f, 44.0f},
                                {0u, 60u, 2093.00439453125f, 1325.0f},
                                {1u, 0u, 65.40637969970703f, 65.0f},
                                {1u, 33u, 440.0f, 22.0f},
                                {1u, 60u, 2093.00439453125f, 1325.0f},
                                {2u, 0u, 65.40641021728516f, 63.0f},
                                {2u, 33u, 440.0f, 11.0f},
                                {2u, 60u, 2093.00439453125f, 647.0f}})
        EXPECT_EQ(tavine_optimized_oscs_freqs[r][osc], (tuned_frequency{f, p})) << r << ' ' << osc;
}

TEST(Tavine, NamesRunChromatically) {
    const std::string letters = "C_C#D_D#E_F_F#G_G#A_A#B_";
    for (std::size_t osc = 0; osc < tavine_nb_oscs; ++osc) {
        const auto& spec = tavine_oscillator_specs[osc];
        EXPECT_EQ(std::string(spec.name, 3),
                  letters.substr(osc % 12 * 2, 2) + std::to_string(2 + osc / 12));
        EXPECT_FLOAT_EQ(spec.root_freq, static_cast<float>(equal_tempered(osc)));
    }
}

} // namespace
