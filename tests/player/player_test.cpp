#include "player/player.h"

#include "player/parameter_text.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numeric>
#include <utility>
#include <vector>

namespace {

using onsets = std::vector<std::pair<unsigned, int>>; ///< note and frame in the block

/// A player of an engine that makes no sound and writes down what reaches it.
struct Player : testing::Test {
    std::vector<int> pieces; ///< frames of each of the latest block
    onsets struck;           ///< in that block
    std::atomic<float> level = 0.0f;
    std::unique_ptr<player> playing{create()};

    player* create() {
        organ* p_organ = organ_create("recorder", 1, 0, 0, 0);
        p_organ->p_control = control_create("recorder");
        control_add_parameter(p_organ->p_control, "level");
        parameter& param = *p_organ->p_control->parameters[0];
        param.value = &level;
        param.midi_cc = 7;
        param.midi_channel = 1;
        p_organ->p_keybeds[0].reset(keybed_create(128, 0, "keys"));
        p_organ->p_keybeds[0]->keybed_callback = [this](const playing_key* p_key, unsigned) {
            const int start = std::accumulate(pieces.begin(), pieces.end(), 0);
            if (p_key->key_state == key_attack && p_key->phase == 0)
                struck.emplace_back(p_key->index, start + static_cast<int>(p_key->frame_index));
        };
        p_organ->process_callback = [this](organ*, std::span<float> out, std::span<float>) {
            pieces.push_back(static_cast<int>(out.size()));
        };
        return player_create(p_organ);
    }

    void SetUp() override { player_set_sampling_rate(playing.get(), 48000); }

    std::span<const int> send(int status, int data1, int data2, int frame) {
        const char message[] = {static_cast<char>(status), static_cast<char>(data1),
                                static_cast<char>(data2)};
        return player_receive_midi_event(playing.get(), message, frame);
    }
    void strike(int note, int frame) { send(0x90, note, 100, frame); }

    const onsets& process(int nb_frames) {
        pieces.clear();
        struck.clear();
        std::vector<float> out(static_cast<std::size_t>(nb_frames));
        player_process(playing.get(), out, out);
        return struck;
    }
};

TEST_F(Player, PiecesOfABlockAreEven) {
    using lengths = std::vector<int>;
    const std::pair<int, lengths> rows[] = {
        {0, {}},         {1, {1}},        {64, {64}},          {65, {32, 33}},
        {100, {50, 50}}, {127, {63, 64}}, {192, {64, 64, 64}}, {441, lengths(7, 63)}};
    for (const auto& [nb_frames, expected] : rows) {
        process(nb_frames);
        EXPECT_EQ(pieces, expected) << nb_frames << " frames";
    }
}

TEST_F(Player, NotesFallInTheBlockAndInOrder) {
    strike(1, std::numeric_limits<int>::min());
    strike(2, -5);
    strike(3, 49); // the first piece's last frame
    strike(4, 50);
    strike(5, 60);
    strike(6, 20);
    strike(7, std::numeric_limits<int>::max());
    strike(8, 1000);
    EXPECT_EQ(process(100),
              (onsets{{1, 0}, {2, 0}, {3, 49}, {4, 50}, {5, 60}, {6, 60}, {7, 99}, {8, 99}}));
    EXPECT_EQ(process(100), onsets{}) << "each once";
}

TEST_F(Player, AFullQueueGoesToTheEngineWhereItStands) {
    strike(1, 70);
    for (std::size_t i = 1; i < note_queue::capacity; ++i)
        send(0x80, 2, 0, 90);
    strike(3, 80);
    EXPECT_EQ(process(100), (onsets{{1, 0}, {3, 80}}));
    strike(4, 70);
    EXPECT_EQ(process(100), (onsets{{4, 70}})) << "and begins anew";
}

TEST_F(Player, PanicSilencesWhatCameBeforeIt) {
    const auto nb_sounding = [&] { return playing->p_organ->p_keybeds[0]->p_key_list->len; };
    strike(1, 0);
    process(100);
    strike(2, 0);
    player_panic(playing.get());
    strike(3, 7);
    EXPECT_EQ(process(100), (onsets{{3, 7}}));
    EXPECT_EQ(nb_sounding(), 1);
    strike(4, 0);
    player_panic(playing.get());
    EXPECT_EQ(process(100), onsets{});
    EXPECT_EQ(nb_sounding(), 0);
}

TEST_F(Player, AChokeTakesOneNoteAndWhatWaitsForIt) {
    const auto sounding = [&] {
        return std::pair{player_sounds(playing.get(), 1), player_sounds(playing.get(), 2)};
    };
    strike(1, 0);
    strike(2, 0);
    process(100);
    EXPECT_EQ(sounding(), std::pair(true, true));
    process(100); // both sustain throughout
    strike(1, 50);
    player_choke(playing.get(), 1);
    player_choke(playing.get(), 128);
    process(100);
    EXPECT_EQ(sounding(), std::pair(false, true));
    for (const auto& [note, has_key] : {std::pair{-1, false}, {0, true}, {127, true}, {128, false}})
        EXPECT_EQ(player_has_key(playing.get(), note), has_key) << note;
}

TEST_F(Player, TextsAreReadBackAsTheyWereShown) {
    parameter param;
    for (const char* unit : {"bin", "db", "%", "!"})
        for (int i = 0; i <= 1000; ++i) {
            param.unit = unit;
            const std::string text = parameter_text(param, static_cast<float>(i) / 1000);
            const auto read = parameter_value(param, text);
            ASSERT_TRUE(read) << text << " in " << unit;
            EXPECT_EQ(parameter_text(param, *read), text) << unit;
        }
    const std::tuple<const char*, const char*, std::optional<float>> typed[] = {
        {"bin", "on", 1.0f}, {"bin", "0", 0.0f}, {"db", " -20 dB ", 0.1f}, {"!", "0.1", 0.1f},
        {"%", "50", 0.5f},   {"bin", "", {}},    {"db", "oo", {}},         {"!", "0.5 dB", {}},
        {"!", "nan", {}},    {"!", "1e999", {}}, {"%", "5 x", {}}};
    for (const auto& [unit, text, value] : typed) {
        param.unit = unit;
        EXPECT_EQ(parameter_value(param, text), value) << text << " in " << unit;
    }
}

TEST_F(Player, AControllerMovesItsParameterOnce) {
    EXPECT_EQ(send(0xB0, 7, 64, 0).size(), 1u);
    EXPECT_EQ(player_get_parameter(playing.get(), 0), 64 / 127.0f);
    player_set_parameter(playing.get(), 0, 0.9f);
    for (const int status : {0x90, 0xE0, 0xB1})
        EXPECT_TRUE(send(status, 7, 127, 0).empty()) << status;
    EXPECT_EQ(level, 0.9f);
}

TEST_F(Player, WhatIsBelowZeroIsPlusZero) {
    constexpr float denormal = std::numeric_limits<float>::denorm_min();
    for (const float value : {-0.0f, -denormal, -1.0f}) {
        EXPECT_EQ(player_set_parameter(playing.get(), 0, value), 0.0f) << value;
        EXPECT_FALSE(std::signbit(level)) << value;
    }
    EXPECT_EQ(player_set_parameter(playing.get(), 0, 2.0f), 2.0f);
    for (const float value : {std::nanf(""), -std::numeric_limits<float>::infinity()})
        EXPECT_FALSE(player_set_parameter(playing.get(), 0, value)) << value;
    EXPECT_EQ(level, 2.0f);
}

} // namespace
