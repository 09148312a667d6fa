#include "envelope/envelope.h"

#include <cmath>
#include <gtest/gtest.h>
#include <memory>

namespace {

struct Envelope : testing::Test {
    std::unique_ptr<envelope, decltype(&envelope_free)> env{envelope_create("env", 3.0f, 3.0f),
                                                            envelope_free};
    const std::vector<float>& table = env->p_env_buffer;
};

TEST_F(Envelope, LengthFollowsTimeAndRateAndTruncates) {
    for (const auto& [ms, rate, nb_gains] : {std::tuple{30.0f, 48000, 1440u},
                                             {3.0f, 44100, 132u},
                                             {-3.0f, 48000, 0u},
                                             {3.0f, 0, 0u}}) {
        envelope_update_second_long(env.get(), ms, ms);
        envelope_set_sampling_rate(env.get(), rate);
        EXPECT_EQ(table.size(), nb_gains) << ms << " ms at " << rate;
    }
}

TEST_F(Envelope, CurvesFollowTheirFormulasHoldTheirEndAndAreCut) {
    const auto charge = [](double x) { return 1 - std::exp(-10 * x); };
    const struct {
        const char* name;
        void (*generate)(envelope*);
        std::function<double(double)> gain; // over the position's share of the curve
        double hold;
    } curves[] = {
        {"linear up", envelope_generate_linear_up, [](double x) { return x; }, 1},
        {"linear down", envelope_generate_linear_down, [](double x) { return 1 - x; }, 0},
        {"exp up", envelope_generate_exp_up, charge, 1},
        {"exp down", envelope_generate_exp_down, [&](double x) { return charge(1 - x); }, 0},
    };
    envelope_set_sampling_rate(env.get(), 1000);
    for (const auto& [name, generate, gain, hold] : curves)
        for (const auto& [n, nb_gains] : {std::pair{100.0, 150u}, {400.0, 200u}}) {
            env->callback_generate = generate;
            envelope_update_second_long(env.get(), static_cast<float>(n),
                                        static_cast<float>(nb_gains));
            ASSERT_EQ(table.size(), nb_gains) << name;
            for (unsigned i = 0; i < nb_gains; ++i)
                ASSERT_NEAR(table[i], i < n ? gain(i / n) : hold, 1e-6)
                    << name << " of " << n << " frames, frame " << i;
        }
}

} // namespace
