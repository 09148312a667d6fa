#include "korvel/korvel.h"

#include "korvel/controls.h"
#include "tests/temporary_folder.h"

#include <algorithm>
#include <barrier>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <thread>
#include <tuple>

namespace {

constexpr int block = 64;

/// An instrument at 48 kHz that is played by hand.
struct instrument {
    std::unique_ptr<control> p_control;
    std::unique_ptr<organ> p_organ;
    std::vector<float> out; ///< what the right output has had

    instrument() {
        setenv("TINDELWAX_SEED", "1", 1);
        p_organ.reset(korvel_create("Tindelwax"));
        p_control.reset(p_organ->p_control);
        organ_set_sampling_rate(p_organ.get(), 48000);
        organ_set_block_size(p_organ.get(), block);
    }

    void send(int status, int note, int frame = 0) const {
        const char message[] = {static_cast<char>(status), static_cast<char>(note), 100};
        organ_receive_midi_event(p_organ.get(), message, frame);
    }

    void render(int nb_blocks = 1) {
        for (int b = 0; b < nb_blocks; ++b) {
            std::vector<float> right(block, std::numeric_limits<float>::quiet_NaN()), left(right);
            organ_process(p_organ.get(), right, left);
            out.insert(out.end(), right.begin(), right.end());
        }
    }
};

/// What is no number counts as deafening.
float peak(std::span<const float> samples) {
    float largest = 0;
    for (const float x : samples)
        largest = std::max(largest, std::isfinite(x) ? std::abs(x) : 1e9f);
    return largest;
}

TEST(Korvel, TheManualSwellsTenTimesAsLongAsTheBass) {
    const instrument played;
    for (const auto& [number, nb_frames] : {std::pair{keybed_manual, 1440u}, {keybed_bass, 144u}}) {
        const keybed* p_keybed = played.p_organ->p_keybeds[number].get();
        for (const envelope* p_env : {p_keybed->p_env_attack.get(), p_keybed->p_env_release.get()})
            EXPECT_EQ(p_env->real_sample_long, nb_frames) << p_keybed->name;
    }
}

/// The peak of what it plays with every key down; `texts` lie where it looks for its own.
float loudness(const std::pair<const char*, std::string>& text) {
    const temporary_folder folder;
    for (const char* name : {"here", "control/confs", "harpmatrix"})
        std::filesystem::create_directories(folder / name);
    file_write(folder / text.first, text.second);
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder / "here");
    instrument played;
    std::filesystem::current_path(before);
    for (int note = 24; note <= 72; ++note)
        played.send(0x90, note);
    played.render(50);
    return peak(played.out);
}

TEST(Korvel, DamagedTextsLeaveAnInstrumentThatPlaysWhatIsSound) {
    constexpr const char* wiring = "harpmatrix/korvel.ini";
    constexpr const char* controls = "control/confs/korvel.ini";
    const std::string sound = "[KORVEL_MANUAL]\nnb_keys=49\nindex=36\nnb_contacts=1\ncontact=0\n"
                              "nb_voices=1\noscillator=36\ntapering_resistor=100000\n";
    const std::string next_key = sound + "index=37\nnb_contacts=1\ncontact=0\nnb_voices=2\n";
    const std::pair<std::pair<const char*, std::string>, bool> rows[] = {
        {{wiring, sound + "index=3\nnb_contacts=2000000000\nnb_keys=2000000000\n"}, true},
        {{wiring, next_key
                      + "oscillator=500\ntapering_resistor=1\n"
                        "oscillator=-5\ntapering_resistor=1\n"},
         true},
        {{wiring, next_key + "oscillator=36\ntapering_resistor=0\n"}, true},
        {{controls, ""}, false},
        {{controls, "[control]\ncc=5\n"}, false},
        {{controls, "[control]\nname=Flute\ndefault=1.0\n"}, false},
        {{controls, "[control]\nname=Volume\ndefault=nonsense\nname=Volume\n"}, false},
        {{controls, "[control]\nname=Volume\ndefault=0.5\nname=Mellow\ndefault=1\n"
                    "name=Split\ndefault=1\n"},
         true}};
    for (const auto& [text, sounds] : rows) {
        const float peak = loudness(text);
        EXPECT_EQ(peak > 1e-4f, sounds) << text.second;
        EXPECT_LT(peak, 10.0f) << text.second;
    }
}

/// A filter that stood still while the organ came to rest, out of use, rings on once it is used.
TEST(Korvel, WhatStoodStillEndsARest) {
    const auto set_flute = [](instrument& played, float value) {
        control_set_parameter(played.p_control.get(), filter_flute, value);
    };
    const auto set_rate = [](instrument& played, float rate) {
        organ_set_sampling_rate(played.p_organ.get(), static_cast<int>(rate));
    };
    const std::tuple<void (*)(instrument&, float), float, float> rows[] = {
        {set_flute, 0.0f, 1.0f}, {set_rate, 44100.0f, 48000.0f}};
    for (const auto& [set, elsewhere, back] : rows) {
        instrument played;
        played.send(0x90, 60);
        played.render(100);
        set(played, elsewhere);
        played.send(0x80, 60);
        while (!played.p_organ->is_resting && played.out.size() < 60 * 48000)
            played.render();
        ASSERT_TRUE(played.p_organ->is_resting);
        played.out.clear();
        played.render(10);
        EXPECT_EQ(peak(played.out), 0.0f);
        set(played, back);
        played.render();
        EXPECT_GT(peak(played.out), 1e-6f) << back;
    }
    instrument held; // whose lowest key has no contact for the bass
    held.p_organ->p_harpmatrixes[0]->p_keys[0].p_contacts.resize(1);
    control_set_parameter(held.p_control.get(), 5, 0.0f);
    held.send(0x90, 24);
    held.render(3000);
    EXPECT_EQ(peak(held.out), 0.0f);
    control_set_parameter(held.p_control.get(), 5, 1.0f);
    held.render(100);
    EXPECT_GT(peak(held.out), 1e-3f);
}

TEST(Korvel, OfTwoThreadsThatSetAControlOneWinsWhole) {
    constexpr float contours[] = {0.2f, 0.8f}, splits[] = {0.0f, 0.5f};
    const instrument played;
    auto& state = *static_cast<korvel*>(played.p_organ->p_instrument.get());
    const auto coefficient = [&] { return state.contour.back().load().a1; };
    float a1[2];
    for (const std::size_t i : {0u, 1u}) {
        contour_filter_set(&state, contours[i]);
        a1[i] = coefficient();
    }
    int nb_torn = 0;
    std::barrier both(2, [&]() noexcept {
        nb_torn += coefficient() != a1[contour_filter_get(&state) == contours[1]];
        nb_torn += state.sound_output_mode
                   != (split_get_value(&state) == splits[0] ? output_bass_right : output_bass_left);
    });
    const auto hammer = [&](std::size_t i) {
        for (int round = 0; round < 20000; ++round) {
            for (int n = 0; n < 4; ++n) { // for the last ones to meet
                contour_filter_set(&state, contours[i]);
                split_set_value(&state, splits[i]);
            }
            both.arrive_and_wait();
        }
    };
    {
        const std::jthread other(hammer, 0);
        hammer(1);
    }
    EXPECT_EQ(nb_torn, 0);
}

} // namespace
