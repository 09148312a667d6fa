#include "live/arrival_clock.h"

#include <cmath>
#include <deque>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr int rate_hz = 48000;
constexpr std::size_t block_frames = 128;
constexpr double block_seconds = double{block_frames} / rate_hz;

/// Where strokes sound that come every 997 frames, when threads wake late by up to so many seconds
/// and the sound's clock runs faster by a ratio.
std::vector<long> heard(double delay_seconds, double drift) {
    std::mt19937 random{1};
    std::uniform_real_distribution<double> late{0, delay_seconds};
    block_clock blocks{block_frames, rate_hz};
    arrival_clock input;
    std::deque<double> waiting; // by when they came, as far as the input knows
    std::vector<long> frames;
    double handed_over = 0;
    int nb_strokes = 0;
    for (long block = 0; frames.size() < 200; ++block) {
        const double now = static_cast<double>(block) * block_seconds / drift + late(random);
        for (; handed_over <= now; ++nb_strokes) {
            const double stroke = (nb_strokes + 1) * 997.0 / rate_hz;
            if (nb_strokes > 0)
                waiting.push_back(input.arrival(997.0 / rate_hz, handed_over));
            handed_over = stroke + late(random) / 2;
        }
        blocks.begin(now);
        while (!waiting.empty()) {
            const auto frame = blocks.frame(waiting.front());
            if (!frame)
                break;
            frames.push_back(block * static_cast<long>(block_frames) + static_cast<long>(*frame));
            waiting.pop_front();
        }
    }
    return frames;
}

double worst_distance(const std::vector<long>& frames, double expected) {
    double worst = 0;
    for (std::size_t i = 100; i < frames.size(); ++i)
        worst =
            std::max(worst, std::abs(static_cast<double>(frames[i] - frames[i - 1]) - expected));
    return worst;
}

TEST(ArrivalClock, StrokesAreHeardAsEvenlyAsTheyCame) {
    for (const double lateness : {0.0, 0.001, 0.002})
        for (const double drift : {1.0, 1.0002, 0.9998}) {
            SCOPED_TRACE(testing::Message() << lateness << " s late, drift " << drift);
            const double jitter_frames = 2 + 3000 * lateness; // of up to 96 that threads add
            EXPECT_LT(worst_distance(heard(lateness, drift), 997 * drift), jitter_frames);
        }
}

TEST(ArrivalClock, WhatIsLateAfterAPauseIsPlayedAtOnce) {
    block_clock blocks{block_frames, rate_hz};
    blocks.begin(1);
    blocks.begin(1 + block_seconds);
    blocks.begin(5);
    EXPECT_EQ(blocks.frame(2), 0);
    EXPECT_EQ(blocks.frame(4.999), std::nullopt) << "now that threads are known to be late";
    EXPECT_LT(blocks.delay(), 0.03);
}

} // namespace
