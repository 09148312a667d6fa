#include "envelope/envelope.h"

#include <cmath>
#include <gtest/gtest.h>
#include <memory>

namespace {

struct Envelope : testing::Test {
    std::unique_ptr<envelope, decltype(&envelope_free)> env{envelope_create("env", 3.0f, 3.0f),
                                                            envelope_free};
    const std::vector<float>& table = env->p_env_buffer;

    void build(void (*generate)(envelope*), float curve_ms, float table_ms, int rate) {
        env->callback_generate = generate;
        envelope_update_second_long(env.get(), curve_ms, table_ms);
        envelope_set_sampling_rate(env.get(), rate);
    }
};

TEST_F(Envelope, LengthFollowsTimeAndRateAndTruncates) {
    envelope_update_second_long(env.get(), 30, 30);
    EXPECT_EQ(table.size(), 0u) << "before any rate";
    envelope_set_sampling_rate(env.get(), 48000);
    EXPECT_EQ(table.size(), 1440u) << "a length set before the rate";
    for (auto [ms, rate, nb_gains] : {std::tuple{3.0f, 44100, 132u},
                                      {3.0f, 48000, 144u},
                                      {0.0f, 48000, 0u},
                                      {-3.0f, 48000, 0u},
                                      {3.0f, 0, 0u}}) {
        build(envelope_generate_exp_up, ms, ms, rate);
        EXPECT_EQ(env->sample_long, nb_gains) << ms << " ms at " << rate;
        EXPECT_EQ(table.size(), nb_gains);
    }
}

TEST_F(Envelope, CurvesFollowTheirFormulasAndHoldTheirEnd) {
    constexpr std::size_t n = 100;
    const auto charge = [](double x) { return 1 - std::exp(-10 * x); };
    const struct {
        const char* name;
        void (*generate)(envelope*);
        std::function<double(double)> gain; // over the position's share of the curve
        float hold;
    } curves[] = {
        {"linear up", envelope_generate_linear_up, [](double x) { return x; }, 1},
        {"linear down", envelope_generate_linear_down, [](double x) { return 1 - x; }, 0},
        {"exp up", envelope_generate_exp_up, charge, 1},
        {"exp down", envelope_generate_exp_down, [&](double x) { return charge(1 - x); }, 0},
    };
    for (const auto& curve : curves) {
        SCOPED_TRACE(curve.name);
        build(curve.generate, 100, 150, 1000);
        ASSERT_EQ(table.size(), 150u);
        for (std::size_t i = 0; i < n; ++i)
            ASSERT_NEAR(table[i], curve.gain(static_cast<double>(i) / n), 1e-6) << "frame " << i;
        for (std::size_t i = n; i < table.size(); ++i)
            ASSERT_EQ(table[i], curve.hold) << "frame " << i;

        build(curve.generate, 400, 200, 1000);
        ASSERT_EQ(table.size(), 200u) << "cut at the table's end";
        EXPECT_NEAR(table[199], curve.gain(199.0 / 400), 1e-6);
    }
}

} // namespace
