#include "instrument/instrument.h"

#include "instrument/registration.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sstream>
#include <thread>
#include <vector>

namespace {

constexpr char strike[] = {static_cast<char>(0x90), 60, 100};

struct Instrument : testing::Test {
    Instrument() { unsetenv("TINDELWAX_SEED"); }
};

std::vector<float> chord_of(instrument& played) {
    std::vector<float> right(4800), left(right);
    player_receive_midi_event(&played.playing(), strike, 0);
    player_process(&played.playing(), right, left);
    return right;
}

/// A value, a controller and a channel of each parameter that no default has.
void move_all(instrument& moved) {
    for (std::size_t i = 0; i < moved.shown().p_control->parameters.size(); ++i) {
        player_set_parameter(&moved.shown(), static_cast<int>(i),
                             0.6f + static_cast<float>(i) / 30);
        moved.shown().p_control->parameters[i]->midi_cc = 20 + static_cast<unsigned>(i);
        moved.shown().p_control->parameters[i]->midi_channel = 3;
    }
}

TEST_F(Instrument, AProjectLoadedAgainIsTheSameInstrumentWhateverItsRatesWere) {
    instrument saved, loaded, other;
    saved.set_sampling_rate(44100);
    move_all(saved);
    const std::string state = saved.save();
    saved.set_sampling_rate(48000);
    EXPECT_EQ(saved.save(), state);
    loaded.set_sampling_rate(96000);
    ASSERT_TRUE(loaded.load(state));
    EXPECT_EQ(loaded.save(), state);
    loaded.set_sampling_rate(48000);
    other.set_sampling_rate(48000);
    move_all(other);
    const auto sound = chord_of(saved);
    EXPECT_EQ(chord_of(loaded), sound);
    EXPECT_NE(chord_of(other), sound) << "two tracks are two instruments";
}

TEST_F(Instrument, AStateIsTakenWholeOrNotAtAll) {
    const std::string start = "tindelwax 1\nseed 5\nVolume 0.25 7 1\n";
    const std::pair<std::string, bool> rows[] = {
        {start + "end\n", true},
        {start + "Volume 0.5 7 1\nNoSuch name 1 2 3\nend\n", true},
        {start + "Bass -1 2 3\nend\n", true},
        {start + "Bass 1e30 2 3\nend\n", true},
        {start, false},
        {start + "end\nend\n", false},
        {start + "Bass\nend\n", false},
        {start + "Bass 1 2\nend\n", false},
        {start + " 1 2 3\nend\n", false},
        {start + "Bass nan 2 3\nend\n", false},
        {start + "Bass inf 2 3\nend\n", false},
        {start + "Bass 1 -2 3\nend\n", false},
        {start + "Bass 1 2 3x\nend\n", false},
        {"tindelwax 2\nseed 5\nend\n", false},
        {"tindelwax 1\nseed 4294967296\nend\n", false},
        {"tindelwax 1\nseed\nend\n", false},
        {"tindelwax 1", false},
        {"", false},
        {std::string(3, '\0'), false}};
    for (const auto& [text, is_taken] : rows) {
        instrument played;
        const std::string before = played.save();
        EXPECT_EQ(played.load(text), is_taken) << text;
        EXPECT_EQ(played.save() == before, !is_taken) << text;
        for (int i = 0; i < 10; ++i) {
            const float value = player_get_parameter(&played.shown(), i);
            EXPECT_TRUE(value >= 0 && value <= 1) << text;
        }
    }
}

TEST_F(Instrument, ARegistrationIsReadWholeOrNotAtAll) {
    instrument played;
    const control& registry = *played.shown().p_control;
    const auto read = registration_read("  # Late night\r\n#Slow\n\n # and soft.\nFlute = on\r\n"
                                        "Bright=off\n\tSplit=0.25",
                                        registry);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->title, "Late night");
    EXPECT_EQ(read->comment, "Slow and soft.");
    std::ostringstream settings;
    for (const auto& [index, value] : read->settings)
        settings << index << '=' << value << ' ';
    EXPECT_EQ(settings.str(), "0=1 1=0 9=0.25 ");
    for (const char* text :
         {"", "# Nothing", "Flute", "Flute=", "=on", "Flut=on", "Flute=on\nBass=1.1", "Bass=-0.1",
          "Bass=nan", "Bass=0.5x", "Bass=0.5 0.5"})
        EXPECT_FALSE(registration_read(text, registry)) << text;
}

TEST_F(Instrument, ItGoesOnPlayingWhileStatesAreLoaded) {
    instrument played, first, second;
    played.set_sampling_rate(48000);
    const std::string states[] = {first.save(), second.save()};
    std::atomic<bool> ends = false;
    float loudest = 0;
    std::thread audio([&] {
        std::vector<float> right(64), left(64);
        while (!ends) {
            player& playing = played.playing();
            player_receive_midi_event(&playing, strike, 0);
            player_process(&playing, right, left);
            loudest = std::max(loudest, std::ranges::max(right));
        }
    });
    for (int i = 0; i < 20; ++i)
        EXPECT_TRUE(played.load(states[i % 2]));
    ends = true;
    audio.join();
    EXPECT_EQ(&played.playing(), &played.shown()) << "the last is not kept waiting";
    EXPECT_GT(loudest, 0.001f);
    EXPECT_EQ(played.save(), states[1]);
}

} // namespace
