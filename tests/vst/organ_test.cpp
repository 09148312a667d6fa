#include "vst/organ.h"

#include "tests/vst/playing.h"
#include "tests/vst/recording.h"

#include <cmath>
#include <cstring>
#include <filesystem>
#include <thread>

namespace {

std::string display(Organ& effect, VstInt32 index) {
    char text[64];
    std::memset(text, 'x', sizeof text);
    effect.getParameterDisplay(index, text);
    return {text, strnlen(text, sizeof text)};
}

std::string name(Organ& effect, VstInt32 index) {
    char text[64] = "untouched";
    effect.getParameterName(index, text);
    return text;
}

TEST(PlugIn, SaysWhatItIs) {
    const auto p_effect = make_organ();
    const AEffect& record = *p_effect->getAeffect();
    EXPECT_EQ(record.uniqueID, 0x54696E64);
    EXPECT_EQ(record.numInputs, 0);
    EXPECT_EQ(record.numOutputs, 2);
    EXPECT_EQ(record.numParams, 10);
    EXPECT_EQ(record.numPrograms, 0);
    EXPECT_EQ(record.flags, effFlagsHasEditor | effFlagsCanReplacing | effFlagsIsSynth);
    char text[64];
    EXPECT_TRUE(p_effect->getEffectName(text));
    EXPECT_STREQ(text, "Tindelwax");
    EXPECT_TRUE(p_effect->getVendorString(text));
    EXPECT_STREQ(text, "Quenmar");
    for (const auto& [feature, answer] : {std::pair{"receiveVstEvents", 1},
                                          {"receiveVstMidiEvent", 1},
                                          {"receiveVstTimeInfo", 1},
                                          {"receiveVstEventsToo", 0},
                                          {"sendVstMidiEvent", 0}}) {
        std::string asked(feature);
        EXPECT_EQ(p_effect->canDo(asked.data()), answer) << feature;
    }
}

TEST(PlugIn, ShowsParametersByTheirUnit) {
    const auto p_effect = make_organ();
    const struct {
        VstInt32 index;
        float value;
        const char* text;
    } rows[] = {{0, 1.0f, "ON"},       {0, 0.5f, "OFF"},      {0, 0.51f, "ON"},
                {6, 0.5f, "-6.02059"}, {6, 0.0f, "-oo"},      {6, 1.0f, "0.000000"},
                {7, 0.1f, "0.100000"}, {9, 1.5f, "1.500000"}, {9, -0.2f, "0.000000"},
                {7, 3e30f, "Huge!"}};
    for (const auto& row : rows) {
        p_effect->setParameter(row.index, row.value);
        EXPECT_EQ(display(*p_effect, row.index), row.text) << row.index << " at " << row.value;
    }
}

TEST(PlugIn, LeavesWhatIsNoParameterAlone) {
    const auto p_effect = make_organ();
    for (const VstInt32 index : {10, 1024, -1, INT32_MAX, INT32_MIN}) {
        p_effect->setParameter(index, 1.0f);
        EXPECT_EQ(p_effect->getParameter(index), 0.0f) << index;
        EXPECT_EQ(name(*p_effect, index), "untouched") << index;
    }
    EXPECT_EQ(name(*p_effect, 5), "BassChords");
    for (const float value : {std::nanf(""), INFINITY, -INFINITY}) {
        p_effect->setParameter(6, 0.25f);
        p_effect->setParameter(6, value);
        EXPECT_EQ(p_effect->getParameter(6), 0.25f);
    }
}

TEST(PlugIn, CutsNamesToWhatHostsHaveRoomFor) {
    const auto p_effect = make_organ();
    std::string longest(3000, 'n');
    p_effect->setProgramName(longest.data());
    char text[64];
    std::memset(text, 'x', sizeof text);
    p_effect->getProgramName(text);
    EXPECT_EQ(std::string(text), std::string(kVstMaxProgNameLen - 1, 'n'));
    EXPECT_EQ(text[kVstMaxProgNameLen], 'x');
    EXPECT_FALSE(p_effect->getProgramNameIndexed(-1, 0, text));
}

TEST(PlugIn, ControllersActAtOnceAndNotesApplyThemNotAgain) {
    const auto p_effect = make_organ();
    send(*p_effect, {{0, {0xB0, 7, 64}}});
    EXPECT_EQ(p_effect->getParameter(6), 64 / 127.0f);
    EXPECT_EQ(p_effect->midiNumEvents, 1);
    p_effect->setParameter(6, 0.9f);
    send(*p_effect, {{0, {0x90, 60, 100}}, {0, {0xE0, 0, 64}}, {0, {0xB1, 7, 127}}});
    EXPECT_EQ(p_effect->getParameter(6), 0.9f);
    EXPECT_EQ(p_effect->midiNumEvents, 3);
}

TEST(PlugIn, LearnBindsTheParameterTouchedLast) {
    organ* p_organ = korvel_create("Tindelwax");
    control_update& update = *p_organ->p_control->p_control_update;
    Organ effect(silent_host, 0, 10, p_organ);
    effect.setParameter(7, 0.5f);
    update.midi_learning = 1;
    send(effect, {{0, {0x90, 60, 100}}, {0, {0xB0, 120, 0}}, {0, {0xB2, 20, 127}}});
    EXPECT_EQ(update.midi_learning, 0);
    EXPECT_EQ(effect.getParameter(7), 0.5f) << "the message that teaches does not move";
    send(effect, {{0, {0xB2, 20, 127}}, {0, {0xB0, 86, 0}}});
    EXPECT_EQ(effect.getParameter(7), 1.0f);
}

TEST(PlugIn, EchoesSysexAndKeepsWhatFits) {
    fake_host host;
    const auto p_effect = make_organ("1", 0, fake_host::callback);
    std::vector<char> dump(70000, 1);
    for (const int nb_bytes : {5, 0, 2, 4098, 65536, -1}) {
        VstMidiSysexEvent sysex{};
        sysex.type = kVstSysExType;
        sysex.dumpBytes = nb_bytes;
        sysex.sysexDump = nb_bytes == 0 ? nullptr : dump.data();
        VstEvents events{};
        events.numEvents = 1;
        events.events[0] = reinterpret_cast<VstEvent*>(&sysex);
        host.log = {};
        EXPECT_EQ(p_effect->processEvents(&events), 1);
        EXPECT_EQ(host.log.calls.substr(0, 2), "8(") << nb_bytes;
    }
}

TEST(PlugIn, ProgramsStoreRecallAndTravelThroughFiles) {
    const auto p_effect = make_organ("1", 3);
    const auto file = std::filesystem::temp_directory_path() / ("organ" + std::to_string(getpid()));
    p_effect->setParameter(6, 0.75f);
    p_effect->storeCurrentProg();
    p_effect->ProgSave(file.c_str());
    send(*p_effect, {{0, {0xC5, 1, 0}}}); // on any channel
    EXPECT_EQ(p_effect->getProgram(), 1);
    EXPECT_EQ(p_effect->getParameter(6), 0.5f);
    for (const VstInt32 program : {3, -1, INT32_MAX}) {
        p_effect->setProgram(program);
        EXPECT_EQ(p_effect->getProgram(), 1) << program;
    }
    p_effect->ProgLoad(file.c_str());
    EXPECT_EQ(p_effect->getParameter(6), 0.75f);
    std::filesystem::remove(file);

    const auto p_empty = make_organ();
    p_empty->storeCurrentProg();
    p_empty->ProgSave(file.c_str());
    p_empty->ProgLoad(file.c_str());
    EXPECT_FALSE(std::filesystem::exists(file)) << "without a program there is nothing to save";
}

TEST(PlugIn, IgnoresRatesAndLengthsThatAreNone) {
    const auto p_effect = make_organ();
    stereo out;
    send(*p_effect, {{0, {0x90, 60, 100}}});
    p_effect->processReplacing(nullptr, nullptr, 64); // a host without buffers
    for (const float rate : {0.0f, -1.0f, std::nanf(""), INFINITY, 999.0f, 2e6f})
        p_effect->setSampleRate(rate);
    for (const VstInt32 length : {0, -1, INT32_MIN, INT32_MAX})
        p_effect->setBlockSize(length);
    process(*p_effect, 500, out);
    EXPECT_EQ(peak(out.r), 0.0f) << "no rate: silence";
    p_effect->setSampleRate(44100.7f);
    process(*p_effect, 0, out);
    process(*p_effect, 5000, out);
    EXPECT_GT(peak(out.r), 0.0f) << "the note waited";
}

TEST(PlugIn, NotesStandAtTheirFrameWhateverTheBlock) {
    for (const int len : {1, 5, 64, 65, 4096})
        for (const int frame : {0, 3, len - 1, len + 1000, -5}) {
            const auto p_effect = make_playing_organ();
            stereo out;
            process(*p_effect, 130, out);
            const int start = static_cast<int>(out.r.size());
            send(*p_effect, {{frame, {0x90, 30, 100}}}); // the bass begins with its note's frame
            process(*p_effect, len, out);
            process(*p_effect, 200, out);
            const auto first =
                std::find_if(out.r.begin(), out.r.end(), [](float x) { return x != 0; });
            EXPECT_EQ(first - out.r.begin(), start + std::clamp(frame, 0, len - 1))
                << "block " << len << " frame " << frame;
        }
}

TEST(PlugIn, KeepsTheOrderOfMessagesWhoseFramesFall) {
    const auto p_effect = make_playing_organ();
    p_effect->setParameter(9, 0.0f); // the bass on the right
    stereo out;
    send(*p_effect, {{200, {0x90, 60, 100}}, {10, {0x90, 30, 100}}});
    process(*p_effect, 512, out);
    const auto first = std::find_if(out.r.begin(), out.r.end(), [](float x) { return x != 0; });
    EXPECT_EQ(first - out.r.begin(), 200) << "a message does not overtake the one before it";
}

TEST(PlugIn, TakesMoreNotesThanTheQueueHolds) {
    const auto p_effect = make_playing_organ();
    std::vector<timed_message> messages;
    for (int i = 0; i < 10001; ++i) // ends on a note-on
        messages.push_back({i / 100, {static_cast<unsigned char>(i % 2 ? 0x80 : 0x90), 60, 100}});
    stereo out;
    send(*p_effect, messages);
    process(*p_effect, 9600, out);
    EXPECT_GT(peak({out.r.end() - 500, out.r.end()}), 0.01f);
}

TEST(PlugIn, PanicSilencesWithTheNextPiece) {
    const auto p_effect = make_playing_organ();
    stereo out;
    send(*p_effect, {{0, {0x90, 60, 100}}});
    process(*p_effect, 6400, out);
    p_effect->panic();
    send(*p_effect, {{0, {0x90, 62, 100}}});
    process(*p_effect, 48000, out);
    EXPECT_LT(peak({out.r.end() - 64, out.r.end()}), 1e-4f);
    send(*p_effect, {{0, {0x90, 62, 100}}});
    process(*p_effect, 6400, out);
    EXPECT_GT(peak({out.r.end() - 64, out.r.end()}), 1e-3f) << "and the next note sounds";
}

TEST(PlugIn, SoundsTheSameHoweverTheHostCutsTime) {
    constexpr int nb_frames = 4096 * 24;
    const auto music = random_music(3, nb_frames, false); // controllers act with their block
    std::mt19937 random(9);
    const auto play_blocks = [&](int length, float bass, int announced) {
        const auto p_effect = make_playing_organ();
        p_effect->setParameter(8, bass);
        if (announced > 0)
            p_effect->setBlockSize(announced);
        return play(*p_effect, music, nb_frames,
                    [&] { return length ? length : static_cast<int>(1 + random() % 3000); });
    };
    const stereo with_bass = play_blocks(64, 0.5f, 0);
    const stereo manual = play_blocks(64, 0.0f, 0);
    ASSERT_GT(peak(manual.r), 0.3f);

    for (const int length : {1, 7, 64, 128, 509, 4096, 0})
        for (const int announced : {0, 32, 4096}) {
            SCOPED_TRACE(testing::Message()
                         << "blocks of " << length << ", announced " << announced);
            if (length > 0 && length % 64 == 0) {
                EXPECT_EQ(play_blocks(length, 0.5f, announced).r, with_bass.r);
                continue;
            }
            // Pieces that begin elsewhere sum in another order, and the Bright filter's pole beside
            // 1 makes that rounding 30 000 times larger. The bass may change a piece away.
            const stereo out = play_blocks(length, 0.0f, announced);
            float error = 0;
            for (std::size_t i = 0; i < out.r.size(); ++i)
                error = std::max(error, std::abs(out.r[i] - manual.r[i]));
            EXPECT_LE(error, peak(manual.r) * std::pow(10.0f, -75.0f / 20));
        }
}

TEST(PlugIn, ManyInstancesSoundAsEachAlone) {
    constexpr int nb_frames = 64 * 200;
    constexpr int nb_instances = 16;
    std::vector<stereo> alone(nb_instances);
    for (int i = 0; i < nb_instances; ++i) {
        const auto p_effect = make_playing_organ(std::to_string(i).c_str());
        alone[static_cast<std::size_t>(i)] =
            play(*p_effect, random_music(static_cast<unsigned>(i), nb_frames), nb_frames,
                 [] { return 64; });
    }
    EXPECT_NE(alone[0].r, alone[1].r);

    std::vector<std::unique_ptr<Organ>> together;
    for (int i = 0; i < nb_instances; ++i)
        together.push_back(make_playing_organ(std::to_string(i).c_str()));
    std::vector<std::thread> threads;
    for (int i = 0; i < nb_instances; ++i)
        threads.emplace_back([&, i] {
            const auto at = static_cast<std::size_t>(i);
            const stereo out =
                play(*together[at], random_music(static_cast<unsigned>(i), nb_frames), nb_frames,
                     [] { return 64; });
            EXPECT_EQ(out.r, alone[at].r) << "instance " << i;
        });
    for (std::thread& thread : threads)
        thread.join();
}

TEST(PlugIn, ThreadsOfAHostDoNotDisturbEachOther) {
    organ* p_organ = korvel_create("Tindelwax");
    control_update& update = *p_organ->p_control->p_control_update;
    Organ effect(silent_host, 0, 10, p_organ);
    effect.setSampleRate(48000);
    std::atomic<bool> playing = true;
    std::thread user([&] { // automation, displays, learn and panic, as a panel would
        for (int i = 0; playing; ++i) {
            effect.setParameter(i % 10, static_cast<float>(i % 101) / 100);
            EXPECT_GE(effect.getParameter(i % 10), 0.0f);
            EXPECT_FALSE(display(effect, i % 10).empty());
            effect.midiNumEvents = 0;
            update.midi_learning = i % 2;
            if (i % 100 == 0)
                effect.panic();
            effect.setOutputMode(i % 3);
        }
    });
    const stereo out = play(effect, random_music(4, 96000), 96000, [] { return 100; });
    playing = false;
    user.join();
    EXPECT_LT(peak(out.r), 1000.0f);
}

} // namespace
