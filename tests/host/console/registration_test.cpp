#include "console/console.h"

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

namespace {

TEST(Registration, EachIsFarFromFullScaleAndAboutAsLoudAsTheOthers) {
    std::vector<double> powers;
    for (const auto& file : std::filesystem::directory_iterator{TEST_REGISTRATIONS}) {
        double& power = powers.emplace_back();
        for (const char* seed : {"1", "2", "3"}) {
            setenv("TINDELWAX_SEED", seed, 1);
            const auto loaded = plugin_load(TEST_INSTRUMENT);
            plugin& instrument = *loaded;
            console{instrument, {}}.draw(
                registration_resolve(registration_read(file), parameter_names(instrument)));
            instrument.prepare(48000, 24000);
            instrument.start();
            event_list chord;
            for (const std::size_t note : {24, 36, 40, 44, 48, 52, 56, 60, 64, 68, 72})
                chord.add(message_make(message_note_on, 0, note, 100), 0);
            instrument.send(chord);
            instrument.process();
            float peak = 0;
            for (const int channel : {0, 1})
                for (const float sample : instrument.output(channel)) {
                    peak = std::max(peak, std::abs(sample));
                    power += double{sample} * sample;
                }
            EXPECT_LT(20 * std::log10(peak), -3) << file.path() << ", seed " << seed;
        }
    }
    EXPECT_LT(10 * std::log10(std::ranges::max(powers) / std::ranges::min(powers)), 3);
}

} // namespace
