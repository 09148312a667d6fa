#include "keybed/keybed.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>

namespace {

/// Plays scripts of "on KEY FRAME", "off KEY FRAME", "alloff FRAME", "next FRAMES", "size FRAMES",
/// "rate HZ" and "reset" at 1000 Hz, where milliseconds are frames, in blocks of 512. The callback
/// writes down each segment as "KEY STATE frame_index + len @ phase"; a block ends with "|".
struct Keybed : testing::Test {
    std::unique_ptr<keybed, decltype(&keybed_free)> keys{keybed_create(4, 24, "keys"), keybed_free};
    std::ostringstream segments;
    int nb_steady = 0; // blocks taken as a whole

    Keybed() {
        keys->keybed_callback = [this](playing_key* p_key, unsigned len) { record(*p_key, len); };
        envelope_update_second_long(keys->p_keys[0].p_env_attack, 100, 100);
        envelope_update_second_long(keys->p_keys[0].p_env_release, 144, 144);
    }

    void record(const playing_key& key, unsigned len) {
        segments << key.index << key.key_state << key.frame_index << '+' << len << '@' << key.phase
                 << ' ';
        const envelope* p_env = key.key_state == key_attack ? key.p_env_attack : key.p_env_release;
        EXPECT_TRUE(key.key_state == key_sustain
                    || std::size_t{key.phase} + len <= p_env->p_env_buffer.size())
            << segments.str();
    }

    std::string play(const std::string& script) {
        std::istringstream words("reset rate 1000 size 512 " + script);
        segments.str({});
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
            else if (word == "next" && words >> first)
                keybed_next(keys.get(), first), segments << "| ";
            else
                keybed_reset(keys.get());
        }
        return segments.str();
    }
};

TEST_F(Keybed, SegmentsAreThoseOfTheScript) {
    const std::pair<const char*, const char*> rows[] = {
        {"on 0 10 next 512 next 512", "0A10+100@0 0S110+402@0 | 0S0+512@0 | "},
        {"on 0 462 next 512 next 512", "0A462+50@0 | 0A0+50@50 0S50+462@0 | "},
        // What ends with the block is closed in the next.
        {"on 0 412 next 512 next 512", "0A412+100@0 | 0A0+0@100 0S0+512@0 | "},
        {"on 0 0 next 512 off 0 368 next 512 next 512 next 512",
         "0A0+100@0 0S100+412@0 | 0S0+368@0 0R368+144@0 | 0R0+0@144 | | "},
        {"on 0 100 off 0 150 next 512 next 512", "0A100+50@0 0R150+144@0 | | "},
        // A second key-on restarts the attack in place; after the release's end it goes to the
        // tail.
        {"on 0 0 on 1 0 next 512 on 0 20 next 512", "0A0+100@0 0S100+412@0 1A0+100@0 1S100+412@0 | "
                                                    "0S0+20@0 0A20+100@0 0S120+392@0 1S0+512@0 | "},
        {"on 0 0 on 1 0 next 512 off 0 0 on 0 300 next 512",
         "0A0+100@0 0S100+412@0 1A0+100@0 1S100+412@0 | "
         "0S0+0@0 0R0+144@0 1S0+512@0 0A300+100@0 0S400+112@0 | "},
        // So does a second key-off, which leaves a key silent whose release has ended.
        {"on 0 0 next 512 off 0 0 off 0 50 next 512",
         "0A0+100@0 0S100+412@0 | 0S0+0@0 0R0+50@0 0R50+144@0 | "},
        {"on 0 0 next 512 off 0 0 off 0 300 next 512 next 512",
         "0A0+100@0 0S100+412@0 | 0S0+0@0 0R0+144@0 | | "},
        {"off 0 0 alloff 0 next 512", "| "},
        // All keys off walks over a key that leaves.
        {"on 0 0 on 1 0 on 2 0 next 512 off 1 0 alloff 300 next 512",
         "0A0+100@0 0S100+412@0 1A0+100@0 1S100+412@0 2A0+100@0 2S100+412@0 | "
         "1S0+0@0 0S0+300@0 1R0+144@0 2S0+300@0 0R300+144@0 2R300+144@0 | "},
        // A reset forgets who stood before whom.
        {"on 0 0 on 1 0 next 512 reset on 1 0 on 2 0 next 512 off 1 0 next 512 next 512",
         "0A0+100@0 0S100+412@0 1A0+100@0 1S100+412@0 | 1A0+100@0 1S100+412@0 2A0+100@0 "
         "2S100+412@0 | 1S0+0@0 1R0+144@0 2S0+512@0 | 2S0+512@0 | "},
        {"on 0 412 next 512 size 64 next 64 size 1024 next 1024 next 1024",
         "0A412+100@0 | 0A0+0@100 0S0+64@0 | 0S0+1024@0 | 0S0+1024@0 | "},
        {"on 0 0 on 1 0 next 512 next 512 next 512 next 512 next 64 on 1 32 next 64 off 0 0 next "
         "512",
         "0A0+100@0 0S100+412@0 1A0+100@0 1S100+412@0 | 0S0+512@0 1S0+512@0 | 0S0+512@0 1S0+512@0 "
         "| 0S0+512@0 1S0+512@0 | 0S0+64@0 1S0+64@0 | 1S0+32@0 0S0+64@0 1A32+32@0 | 0S0+0@0 "
         "0R0+144@0 1A0+68@32 1S68+444@0 | "},
        // Frames outside the block or before what is rendered move.
        {"on 0 -5 on 1 9999 next 512 next 512",
         "0A0+100@0 0S100+412@0 1A512+0@0 | 0S0+512@0 1A0+100@0 1S100+412@0 | "},
        {"on 0 200 off 0 100 on 0 50 next 512", "0A200+0@0 0R200+0@0 0A200+100@0 0S300+212@0 | "},
        {"on 0 500 next 400 next 512", "0A500+0@0 | 0A100+100@0 0S200+312@0 | "},
        // At another rate a table goes on at the same share; without a rate it is empty.
        {"on 0 437 next 512 rate 500 next 512", "0A437+75@0 | 0A0+13@37 0S13+499@0 | "},
        {"on 0 0 next 512 off 0 440 next 512 rate 2000 next 512 next 512",
         "0A0+100@0 0S100+412@0 | 0S0+440@0 0R440+72@0 | 0R0+144@144 | | "},
        {"rate 0 on 0 10 off 0 20 next 512 next 512", "0A10+0@0 0S10+10@0 0R20+0@0 | | "},
        {"rate 0 on 0 0 next 0 rate 1000 next 512", "| 0A0+0@100 0S0+512@0 | "},
    };
    for (const bool whole : {false, true})
        for (const auto& [script, expected] : rows) {
            if (whole)
                keys->steady_callback = [this](unsigned len) {
                    ++nb_steady;
                    for (auto* elem = keys->p_key_list->first; elem; elem = elem->next)
                        record(*static_cast<playing_key*>(elem->obj), len);
                };
            EXPECT_EQ(play(script), expected) << script << (whole ? ", steady blocks whole" : "");
        }
    EXPECT_EQ(nb_steady, 3);
}

TEST_F(Keybed, ARateChangeAnywhereInATableStaysInsideTheNewOne) {
    for (const std::string state : {"on 0 0", "on 0 0 next 512 off 0 0"})
        for (const int rate : {1, 9, 333, 1000, 44100})
            for (int rendered = 1; rendered < 150; rendered += 7)
                play(state + " next " + std::to_string(rendered) + " rate " + std::to_string(rate)
                     + " next 512 next 8000"); // the callback checks every segment
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
        {3, {0x92, 25, 33}, 1, 33},  {3, {0x93, 25, 33}, -1, 0},    {3, {0x83, 25, 33}, -1, 0},
    };
    for (const auto& row : rows) {
        play("on 0 0 on 1 0 on 2 0 on 3 0");
        keys->midi_channel = row.channel;
        char message[3];
        std::copy_n(row.message, 3, message);
        keybed_receive_midi_event(keys.get(), message, 0);
        for (int key = 0; key < 4; ++key)
            EXPECT_EQ(keys->p_keys[static_cast<std::size_t>(key)].midi_velocity,
                      key == row.key ? row.velocity : 100)
                << "row " << &row - rows << ", key " << key;
    }
}

} // namespace
