#include "report/report.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace {

TEST(Keyboard, FindsTheTranspositionThatFitsMost) {
    struct lie {
        const char* name;
        std::vector<std::size_t> notes;
        int transposition;
        std::uint64_t nb_outside_unmoved;
        std::uint64_t nb_outside_moved;
    };
    const lie rows[] = {{"all on it", {24, 72}, 0, 0, 0},
                        {"a semitone too high", {24 + 1, 72 + 1}, -1, 1, 0},
                        {"two octaves too low", {0, 12}, 24, 2, 0},
                        {"wider than the keyboard", {20, 30, 80}, -8, 2, 1},
                        {"nothing at all", {}, 0, 0, 0}};
    for (const lie& row : rows) {
        score music;
        for (const std::size_t note : row.notes)
            ++music.notes_before_transposition[note];
        EXPECT_EQ(keyboard_count_outside(tindelwax_keyboard, music, 0), row.nb_outside_unmoved)
            << row.name;
        const int best = keyboard_best_transposition(tindelwax_keyboard, music);
        EXPECT_EQ(keyboard_count_outside(tindelwax_keyboard, music, best), row.nb_outside_moved)
            << row.name;
        EXPECT_LE(std::abs(best), std::abs(row.transposition)) << row.name;
    }
}

TEST(Report, TellsTheSpeedToAUsefulDigit) {
    const score music;
    const meter levels;
    for (const auto& [elapsed, speed] : {std::pair{2.0, "\n0.5 times faster"},
                                         {0.5, "\n2.0 times faster"},
                                         {0.1003, "\n10 times faster"},
                                         {0.001, "\n1000 times faster"}}) {
        const std::string text = report_text({.output_name = "a.wav",
                                              .seconds = 1,
                                              .elapsed_seconds = elapsed,
                                              .transposition = 0,
                                              .chooses_channels = false,
                                              .keys = widest_keyboard,
                                              .nb_outputs = 2,
                                              .clips = false,
                                              .music = music,
                                              .levels = levels});
        EXPECT_NE(text.find(speed), text.npos) << text;
    }
}

TEST(Meter, MeasuresAndKeepsOutWhatIsNoNumber) {
    std::vector<float> samples{0.5f, -1.5f, 1.0f, std::numeric_limits<float>::quiet_NaN(),
                               -std::numeric_limits<float>::infinity()};
    meter levels;
    meter_take(levels, samples);
    EXPECT_EQ(levels.peak, 1.5f);
    EXPECT_EQ(levels.nb_over, 1u);
    EXPECT_EQ(levels.nb_invalid, 2u);
    EXPECT_NEAR(meter_rms(levels), std::sqrt((0.25 + 2.25 + 1) / 5), 1e-12);
    EXPECT_EQ(samples[3], 0);
    EXPECT_EQ(samples[4], 0);
}

} // namespace
