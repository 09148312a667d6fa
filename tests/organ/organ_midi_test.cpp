#include "organ/organ.h"

#include "tests/organ/two_manual_organ.h"

#include <gtest/gtest.h>

namespace {

bool sounds(std::span<const float> out) {
    return std::ranges::any_of(out, [](float x) { return x != 0; });
}

TEST(OrganMidi, NotesReachTheKeybedsThatListen) {
    const struct {
        int status, note, velocity;
        int upper_omni;
        bool upper_sounds, lower_sounds;
    } rows[] = {
        {0x90, 60, 100, 0, true, false},  {0x91, 60, 100, 0, false, false},
        {0x91, 36, 100, 0, false, true},  {0x90, 36, 100, 0, false, false},
        {0x92, 60, 100, 0, false, false}, {0x92, 60, 100, 1, true, false},
        {0x92, 60, 100, 2, false, false}, {0x90, 60, 0, 0, false, false},
    };
    for (const auto& row : rows) {
        const two_manual_organ twin;
        twin.start();
        keybed* p_upper = twin.p_organ->p_keybeds[upper].get();
        p_upper->omni_mode = row.upper_omni;
        if (row.upper_omni != 0)
            p_upper->midi_channel = -1;
        twin.send(row.status, row.note, row.velocity);
        const auto [out_r, out_l] = twin.render();
        EXPECT_EQ(sounds(out_r), row.upper_sounds) << row.status << " " << row.note;
        EXPECT_EQ(sounds(out_l), row.lower_sounds) << row.status << " " << row.note;
    }
}

TEST(OrganMidi, AllNotesOffReleasesAndAllSoundOffSilences) {
    constexpr int never = organ_block;
    const struct {
        int status, cc, value;
        int omni;               ///< of both manuals
        int silent_r, silent_l; ///< the frame from which a manual is silent
    } rows[] = {
        {0xB0, 123, 0, 0, envelope_frames, never},
        {0xB1, 123, 0, 0, never, envelope_frames},
        {0xB0, 123, 0, 1, never, never},
        {0xB0, 123, 0, 2, never, never},
        {0xB0, 123, 1, 0, never, never},
        {0xB0, 120, 0, 0, 0, never},
        {0xB1, 120, 0, 0, never, 0},
        {0xB5, 120, 0, 0, never, never},
        {0xB5, 120, 0, 1, 0, 0},
        {0xB5, 120, 0, 2, 0, 0},
        {0xB0, 120, 5, 0, never, never},
    };
    for (const auto& row : rows) {
        const two_manual_organ twin;
        twin.start();
        twin.send(0x90, 60, 100);
        twin.send(0x91, 36, 100);
        (void)twin.render();
        for (const auto& p_keybed : twin.p_organ->p_keybeds)
            p_keybed->omni_mode = row.omni;
        twin.send(row.status, row.cc, row.value);
        const auto [out_r, out_l] = twin.render();
        for (const auto& [name, out, silent] :
             {std::tuple{"upper", out_r, row.silent_r}, {"lower", out_l, row.silent_l}})
            for (int i = 0; i < organ_block; ++i)
                ASSERT_EQ(out[static_cast<std::size_t>(i)] == 0, i >= silent)
                    << name << " manual after " << row.status << " " << row.cc << " " << row.value
                    << ", omni mode " << row.omni << ", frame " << i;
    }
}

/// What the update record holds after a message, as "index value" texts.
std::string updates(const control& registry) {
    const control_update& update = *registry.p_control_update;
    std::string text;
    for (std::size_t i = 0; i < static_cast<std::size_t>(update.nb_parameter_updated); ++i)
        text += std::to_string(update.parameter_index[i]) + "="
                + std::to_string(update.parameter_value[i]) + " ";
    return text;
}

TEST(OrganMidi, ControllersListTheParametersThatTheyMove) {
    two_manual_organ twin;
    std::atomic<float> volume = 0.5f;
    twin.add_parameter("Volume", &volume, 7, 1);
    twin.add_parameter("Bass", nullptr, 7, 1);
    twin.add_parameter("Off", nullptr, 120, 1);
    twin.add_parameter("Unbound", nullptr, 0, 0);
    const struct {
        int status, cc, value;
        const char* expected;
    } rows[] = {
        {0xB0, 7, 127, "0=1.000000 1=1.000000 "},
        {0xB0, 7, 0, "0=0.000000 1=0.000000 "},
        {0xB0, 7, 64, "0=0.503937 1=0.503937 "},
        {0xB1, 7, 127, ""},
        {0xB0, 8, 127, ""},
        {0xB0, 0, 127, ""},
        {0xB0, 120, 127, "2=1.000000 "},
        {0x90, 7, 127, "2=1.000000 "}, // a note leaves the record alone
        {0xB0, 120, 0, "2=1.000000 "}, // all sound off too
    };
    for (const auto& row : rows) {
        twin.send(row.status, row.cc, row.value);
        EXPECT_EQ(updates(*twin.p_organ->p_control), row.expected)
            << row.status << " " << row.cc << " " << row.value;
    }
    EXPECT_EQ(volume, 0.5f) << "the caller applies the updates, not the engine";
}

TEST(OrganMidi, LearnBindsTheParameterTouchedLast) {
    const struct {
        const char* name;
        int learning, touched, status, cc, value;
        unsigned bound_cc, bound_channel;
        int still_learning;
    } rows[] = {
        {"armed", 1, 0, 0xB3, 20, 5, 20, 4, 0},
        {"controller 120 with a value", 1, 0, 0xB3, 120, 5, 120, 4, 0},
        {"not armed", 0, 0, 0xB3, 20, 5, 7, 1, 0},
        {"nothing touched", 1, -1, 0xB3, 20, 5, 7, 1, 1},
        {"an index past the end", 1, 9, 0xB3, 20, 5, 7, 1, 1},
        {"no data byte", 1, 0, 0xB3, 200, 5, 7, 1, 1},
        {"all notes off", 1, 0, 0xB3, 123, 0, 7, 1, 1},
        {"all sound off", 1, 0, 0xB3, 120, 0, 7, 1, 1},
        {"a note", 1, 0, 0x93, 20, 5, 7, 1, 1},
    };
    for (const auto& row : rows) {
        two_manual_organ twin;
        twin.add_parameter("Volume", nullptr, 7, 1);
        control_update& update = *twin.p_organ->p_control->p_control_update;
        update.midi_learning = row.learning;
        update.last_ui_control_changed_index = row.touched;
        twin.send(row.status, row.cc, row.value);
        const parameter& volume = *twin.p_organ->p_control->parameters[0];
        EXPECT_EQ(volume.midi_cc, row.bound_cc) << row.name;
        EXPECT_EQ(volume.midi_channel, row.bound_channel) << row.name;
        EXPECT_EQ(update.midi_learning, row.still_learning) << row.name;
        EXPECT_EQ(updates(*twin.p_organ->p_control), "")
            << row.name << ": what teaches the binding does not move the parameter";
        twin.send(0xB0, 7, 127);
        EXPECT_EQ(updates(*twin.p_organ->p_control), row.bound_cc == 7 ? "0=1.000000 " : "")
            << row.name;
    }
}

} // namespace
