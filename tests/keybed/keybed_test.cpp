#include "keybed/keybed.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>

namespace {

/// Plays a script of events and writes down the segments that the callback sees. The words are
/// "on KEY FRAME", "off KEY FRAME", "alloff FRAME", "next FRAMES", "size FRAMES", "rate HZ" and
/// "reset"; a segment reads "KEY STATE frame_index + len @ phase", a block ends with "|".
struct Keybed : testing::Test {
    std::unique_ptr<keybed, decltype(&keybed_free)> keys{keybed_create(4, 24, "keys"), keybed_free};
    std::ostringstream segments;

    Keybed() {
        keys->keybed_callback = [this](playing_key* p_key, unsigned len) { record(*p_key, len); };
        // At 1000 Hz milliseconds are frames.
        envelope_update_second_long(keys->p_env_attack, 100, 100);
        envelope_update_second_long(keys->p_env_release, 144, 144);
    }

    void record(const playing_key& key, unsigned len) {
        segments << key.index << key.key_state << key.frame_index << '+' << len << '@' << key.phase
                 << ' ';
        if (key.key_state == key_sustain)
            return;
        const envelope* p_env = key.key_state == key_attack ? key.p_env_attack : key.p_env_release;
        EXPECT_LE(std::size_t{key.phase} + len, p_env->p_env_buffer.size()) << segments.str();
    }

    std::string play(const std::string& script) {
        std::istringstream words(script);
        int first = 0, second = 0;
        for (std::string word; words >> word;) {
            if (word == "on" && words >> first >> second)
                keybed_receive_key_on(keys.get(), first, 100, second);
            else if (word == "off" && words >> first >> second)
                keybed_receive_key_off(keys.get(), first, 64, second);
            else if (word == "alloff" && words >> first)
                keybed_all_key_off(keys.get(), first);
            else if (word == "size" && words >> first)
                keybed_set_block_size(keys.get(), first);
            else if (word == "rate" && words >> first)
                keybed_set_sampling_rate(keys.get(), first);
            else if (word == "reset")
                keybed_reset(keys.get());
            else if (word == "next" && words >> first) {
                keybed_next(keys.get(), first);
                segments << "| ";
            } else
                ADD_FAILURE() << "script: " << word;
        }
        return segments.str();
    }
};

struct scenario {
    const char* name;
    const char* script;
    const char* segments;
};

struct KeybedSegments : Keybed, testing::WithParamInterface<scenario> {};

TEST_P(KeybedSegments, AreThoseOfTheScript) {
    EXPECT_EQ(play(std::string{"rate 1000 size 512 "} + GetParam().script), GetParam().segments);
}

constexpr scenario scenarios[] = {
    {"AttackInsideTheBlock", "on 0 10 next 512 next 512", "0A10+100@0 0S110+402@0 | 0S0+512@0 | "},
    {"AttackAcrossTheBlocksEnd", "on 0 462 next 512 next 512",
     "0A462+50@0 | 0A0+50@50 0S50+462@0 | "},
    {"AttackThatEndsWithTheBlockIsClosedInTheNext", "on 0 412 next 512 next 512",
     "0A412+100@0 | 0A0+0@100 0S0+512@0 | "},
    {"OnAndOffInOneBlock", "on 0 100 off 0 150 next 512 next 512", "0A100+50@0 0R150+144@0 | | "},
    {"ReleaseThatEndsWithTheBlockIsClosedInTheNext",
     "on 0 0 next 512 off 0 368 next 512 next 512 next 512",
     "0A0+100@0 0S100+412@0 | 0S0+368@0 0R368+144@0 | 0R0+0@144 | | "},
    {"SecondOnRestartsTheAttackInPlace", "on 0 0 on 1 0 next 512 on 0 20 next 512",
     "0A0+100@0 0S100+412@0 1A0+100@0 1S100+412@0 | "
     "0S0+20@0 0A20+100@0 0S120+392@0 1S0+512@0 | "},
    {"OnAfterTheReleaseEndedGoesToTheTail", "on 0 0 on 1 0 next 512 off 0 0 on 0 300 next 512",
     "0A0+100@0 0S100+412@0 1A0+100@0 1S100+412@0 | "
     "0S0+0@0 0R0+144@0 1S0+512@0 0A300+100@0 0S400+112@0 | "},
    {"OffInReleaseRestartsTheRelease", "on 0 0 next 512 off 0 0 off 0 50 next 512",
     "0A0+100@0 0S100+412@0 | 0S0+0@0 0R0+50@0 0R50+144@0 | "},
    {"OffThatFindsTheReleaseEndedLeavesTheKeySilent",
     "on 0 0 next 512 off 0 0 off 0 300 next 512 next 512",
     "0A0+100@0 0S100+412@0 | 0S0+0@0 0R0+144@0 | | "},
    {"OffOfASilentKeyIsNothing", "off 0 0 alloff 0 next 512", "| "},
    {"AllKeysOffWalksOverAKeyThatLeaves",
     "on 0 0 on 1 0 on 2 0 next 512 off 1 0 alloff 300 next 512",
     "0A0+100@0 0S100+412@0 1A0+100@0 1S100+412@0 2A0+100@0 2S100+412@0 | "
     "1S0+0@0 0S0+300@0 1R0+144@0 2S0+300@0 0R300+144@0 2R300+144@0 | "},
    {"ResetSilencesAtOnceAndKeysCanSoundAgain",
     "on 0 0 on 1 0 next 512 reset next 512 on 1 500 next 512",
     "0A0+100@0 0S100+412@0 1A0+100@0 1S100+412@0 | | 1A500+12@0 | "},
    {"BlockLengthsChange", "on 0 412 next 512 size 64 next 64 size 1024 next 1024 next 1024",
     "0A412+100@0 | 0A0+0@100 0S0+64@0 | 0S0+1024@0 | 0S0+1024@0 | "},
    {"FramesOutsideTheBlockMoveToItsEdges", "on 0 -5 on 1 9999 next 512 next 512",
     "0A0+100@0 0S100+412@0 1A512+0@0 | 0S0+512@0 1A0+100@0 1S100+412@0 | "},
    {"FramesThatGoBackMoveToWhatIsRendered", "on 0 200 off 0 100 on 0 50 next 512",
     "0A200+0@0 0R200+0@0 0A200+100@0 0S300+212@0 | "},
    {"AnEventBeyondAShorterBlockWaitsForTheNext", "on 0 500 next 400 next 512",
     "0A500+0@0 | 0A100+100@0 0S200+312@0 | "},
    {"LowerRateInAttackGoesOnAtTheSameShare", "on 0 437 next 512 rate 500 next 512",
     "0A437+75@0 | 0A0+13@37 0S13+499@0 | "},
    {"HigherRateInReleaseGoesOnAtTheSameShare",
     "on 0 0 next 512 off 0 440 next 512 rate 2000 next 512 next 512",
     "0A0+100@0 0S100+412@0 | 0S0+440@0 0R440+72@0 | 0R0+144@144 | | "},
    {"WithoutARateAttackAndReleaseAreEmpty", "rate 0 on 0 10 off 0 20 next 512 next 512",
     "0A10+0@0 0S10+10@0 0R20+0@0 | | "},
    {"TheFirstRateEndsAnAttackThatHadNoTable", "rate 0 on 0 0 next 0 rate 1000 next 512",
     "| 0A0+0@100 0S0+512@0 | "},
};

INSTANTIATE_TEST_SUITE_P(Keybed, KeybedSegments, testing::ValuesIn(scenarios),
                         [](const auto& row) { return std::string{row.param.name}; });

TEST_F(Keybed, ARateChangeAnywhereInATableStaysInsideTheNewOne) {
    for (const char* state : {"on 0 0", "on 0 0 next 512 off 0 0"})
        for (int rate : {1, 9, 333, 1000, 44100})
            for (int rendered = 1; rendered < 150; rendered += 7)
                play("rate 1000 size 512 " + std::string{state} + " next "
                     + std::to_string(rendered) + " rate " + std::to_string(rate)
                     + " next 512 next 8000 reset "); // the callback checks every segment
}

TEST_F(Keybed, NoteMessagesReachTheKeysOfItsRangeAndChannel) {
    const struct {
        int channel;
        unsigned char message[3];
        int key;      // that changes, -1 for none
        int velocity; // that it then has
    } rows[] = {
        {-1, {0x90, 24, 99}, 0, 99}, {-1, {0x9F, 27, 255}, 3, 255}, {-1, {0x90, 23, 99}, -1, 0},
        {-1, {0x90, 28, 99}, -1, 0}, {-1, {0x90, 152, 99}, -1, 0},  {-1, {0x90, 25, 0}, 1, 64},
        {-1, {0x80, 25, 33}, 1, 33}, {-1, {0xA0, 25, 33}, -1, 0},   {-1, {0xB0, 25, 33}, -1, 0},
        {3, {0x92, 25, 33}, 1, 33},  {3, {0x93, 25, 33}, -1, 0},
    };
    for (const auto& row : rows) {
        keybed_reset(keys.get());
        for (int key = 0; key < 4; ++key)
            keybed_receive_key_on(keys.get(), key, 1, 0);
        keys->midi_channel = row.channel;
        char message[3];
        std::copy_n(row.message, 3, message);
        keybed_receive_midi_event(keys.get(), message, 0);
        for (int key = 0; key < 4; ++key)
            EXPECT_EQ(keys->p_keys[static_cast<std::size_t>(key)].midi_velocity,
                      key == row.key ? row.velocity : 1)
                << "row " << &row - rows << ", key " << key;
    }
}

TEST_F(Keybed, TheLowestSoundingKeyHasTheBass) {
    const struct {
        const char* script;
        const char* muted; // by key
    } steps[] = {
        {"", "0000"},
        {"rate 1000 size 512 on 2 0", "1101"},
        {"on 3 0", "1101"},
        {"on 1 0", "1011"},
        {"next 512 off 1 500 next 512", "1011"}, // its release goes on
        {"next 512", "1101"},
        {"alloff 0 next 512 next 512", "1101"}, // none sounds: the flags stay
        {"on 3 0", "1110"},
        {"reset on 0 0", "0111"},
    };
    for (const auto& step : steps) {
        play(step.script);
        keybed_update_mono_bass(keys.get());
        std::string muted;
        for (const playing_key& key : keys->p_keys)
            muted += key.is_muted ? '1' : '0';
        EXPECT_EQ(muted, step.muted) << "after " << step.script;
    }
}

} // namespace
