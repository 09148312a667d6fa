#include "check/watched_calls.h"
#include "live/sound_system.h"
#include "tests/host/live/jack_server.h"
#include "tests/host/platform/desktop.h"
#include "tests/temporary_folder.h"

#include <algorithm>
#include <map>
#include <sstream>

#include <gtest/gtest.h>

namespace {

constexpr int rate_hz = 48000;

/// An instrument, ready to be played.
struct player {
    plugin instrument{TEST_INSTRUMENT};
    console players{instrument, {}};
    console songs{instrument, {}};
    live_instrument live;

    explicit player(live_song song = {}) : live{instrument, players, songs, std::move(song)} {}
};

struct note {
    jack_nframes_t time; ///< of the server's clock
    short_message message;
};

/// Sends chords at uneven frames, each noted.
struct sender {
    jack_client_t* p_client = jack_server::open("sender");
    jack_port_t* p_port =
        jack_port_register(p_client, "notes", JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0);
    std::atomic<int> nb_wanted = 0; ///< messages
    int nb_sent = 0;
    jack_nframes_t next_time = 0;
    std::vector<note> sent = std::vector<note>(100000);

    sender() {
        jack_set_process_callback(
            p_client,
            [](jack_nframes_t nb, void* self) { return static_cast<sender*>(self)->play(nb); },
            this);
        jack_activate(p_client);
    }
    ~sender() { jack_client_close(p_client); }

    int play(jack_nframes_t nb_frames) {
        void* p_buffer = jack_port_get_buffer(p_port, nb_frames);
        jack_midi_clear_buffer(p_buffer);
        const jack_nframes_t now = jack_last_frame_time(p_client);
        next_time = std::max(next_time, now);
        for (; nb_sent < nb_wanted && next_time < now + nb_frames; next_time += 997) {
            const auto key = static_cast<std::size_t>(36 + nb_sent / 2 * 7 % 36);
            const short_message message =
                nb_sent % 2 ? message_release(0, key) : message_make(message_note_on, 0, key, 100);
            jack_midi_event_write(p_buffer, next_time - now, message.data(), message.size());
            sent[static_cast<std::size_t>(nb_sent++)] = {next_time, message};
        }
        return 0;
    }
};

/// Keeps what is heard, by the frames of the instrument that it listens to.
struct recorder {
    const live_instrument* p_live; ///< null keeps nothing but the peak
    jack_client_t* p_client = jack_server::open("recorder");
    jack_port_t* p_ports[2]{};
    std::vector<float> samples[2]{};
    std::atomic<float> peak = 0;
    std::atomic<bool> is_connected = false;
    std::uint64_t first_heard = 0;
    std::atomic<std::uint64_t> nb_heard = 0;
    std::map<jack_nframes_t, std::uint64_t> frames{}; ///< of the instrument, as cycles begin

    explicit recorder(const live_instrument* p_heard = nullptr, std::size_t nb_frames = 0)
        : p_live{p_heard} {
        for (int i = 0; i < 2; ++i) {
            samples[i].resize(nb_frames);
            p_ports[i] = jack_port_register(p_client, i ? "right" : "left", JACK_DEFAULT_AUDIO_TYPE,
                                            JackPortIsInput, 0);
        }
        jack_set_process_callback(
            p_client,
            [](jack_nframes_t nb, void* self) { return static_cast<recorder*>(self)->hear(nb); },
            this);
        jack_activate(p_client);
        jack_connect(p_client, "tindelwax:out_1", "recorder:left");
        jack_connect(p_client, "tindelwax:out_2", "recorder:right");
        is_connected = true;
    }
    ~recorder() { stop(); }

    void stop() {
        if (jack_client_t* p_stopped = std::exchange(p_client, nullptr))
            jack_client_close(p_stopped);
    }

    /// Where the instrument had a note of that time; late cycles leave times out.
    std::uint64_t frame_of(jack_nframes_t time) const {
        const auto cycle = std::prev(frames.upper_bound(time));
        return cycle->second + (time - cycle->first);
    }

    int hear(jack_nframes_t nb_frames) {
        const float* p_left = static_cast<float*>(jack_port_get_buffer(p_ports[0], nb_frames));
        peak = std::max(peak.load(), *std::max_element(p_left, p_left + nb_frames));
        const std::uint64_t end = p_live ? p_live->nb_frames() : nb_frames;
        if (!is_connected || end > samples[0].size())
            return 0;
        if (nb_heard == 0)
            first_heard = end - nb_frames;
        frames[jack_last_frame_time(p_client)] = end - nb_frames;
        for (int i = 0; i < 2; ++i)
            std::copy_n(static_cast<float*>(jack_port_get_buffer(p_ports[i], nb_frames)), nb_frames,
                        samples[i].end()
                            - static_cast<std::ptrdiff_t>(samples[i].size() - end + nb_frames));
        nb_heard = end;
        return 0;
    }
};

/// What an instrument of the same seed makes of the notes, by itself.
std::array<std::vector<float>, 2> rendered(const sender& played, const recorder& heard,
                                           int block_frames) {
    plugin instrument{TEST_INSTRUMENT};
    instrument.prepare(rate_hz, block_frames);
    instrument.start();
    std::array<std::vector<float>, 2> sound;
    event_list list;
    int next = 0;
    for (std::uint64_t frame = 0; frame < heard.nb_heard;
         frame += static_cast<unsigned>(block_frames)) {
        list.clear();
        for (; next < played.nb_sent; ++next) {
            const note& one = played.sent[static_cast<std::size_t>(next)];
            const std::uint64_t at = heard.frame_of(one.time);
            if (at >= frame + static_cast<unsigned>(block_frames))
                break;
            list.add(one.message, static_cast<int>(at - frame));
        }
        instrument.send(list);
        instrument.process();
        for (int i = 0; i < 2; ++i)
            sound[static_cast<std::size_t>(i)].insert(sound[static_cast<std::size_t>(i)].end(),
                                                      instrument.output(i).begin(),
                                                      instrument.output(i).end());
    }
    return sound;
}

struct Jack : testing::Test {
    Jack() { setenv("TINDELWAX_SEED", "1", 1); }
};

/// Returns false where the machine was too late to hear every block.
bool sounds_as_rendered(int block_frames) {
    const jack_server server{block_frames};
    sender keyboard;
    player played;
    const auto system = jack_system_open(played.live, {.midi = "sender:notes"});
    EXPECT_TRUE(system);
    recorder ear{&played.live, 20 * rate_hz};
    EXPECT_TRUE(comes_true([&] { return ear.nb_heard > 4800; }));
    keyboard.nb_wanted = 40;
    EXPECT_TRUE(comes_true([&] { return keyboard.nb_sent == 40; }));
    const auto enough = ear.nb_heard + 9600;
    EXPECT_TRUE(comes_true([&] { return ear.nb_heard > enough; }));
    ear.stop();
    if (ear.nb_heard - ear.first_heard != ear.frames.size() * static_cast<unsigned>(block_frames))
        return false;
    const auto sound = rendered(keyboard, ear, std::min(block_frames, 64));
    for (std::size_t i = 0; i < 2; ++i) {
        const auto first = static_cast<std::ptrdiff_t>(ear.first_heard);
        EXPECT_GT(std::ranges::max(ear.samples[i]), 0.05f);
        EXPECT_TRUE(std::equal(ear.samples[i].begin() + first,
                               ear.samples[i].begin() + static_cast<std::ptrdiff_t>(ear.nb_heard),
                               sound[i].begin() + first));
    }
    return true;
}

TEST_F(Jack, NotesSoundOnTheirFrameAndAsARenderMakesThem) {
    for (const int block_frames : {16, 64, 256, 1024}) {
        SCOPED_TRACE(block_frames);
        int nb_tries = 1;
        while (!HasFailure() && !sounds_as_rendered(block_frames) && nb_tries < 10)
            ++nb_tries;
        EXPECT_LT(nb_tries, 10) << "too late every time";
    }
}

TEST_F(Jack, NoNoteIsMissingInTenMinutesOfFreewheeling) {
    const temporary_folder folder;
    setenv("TINDELWAX_TEST_LOG", (folder / "log").c_str(), 1);
    const jack_server server{1024};
    sender keyboard;
    {
        plugin sine{TEST_PLUGINS "/sine_main.so"};
        console desk{sine, {}};
        live_instrument live{sine, desk, desk, {}};
        const auto system = jack_system_open(live, {.midi = "sender:notes"});
        ASSERT_TRUE(system);
        ASSERT_TRUE(comes_true([&] { return live.nb_frames() > 0; }));
        jack_set_freewheel(keyboard.p_client, 1);
        keyboard.nb_wanted = 10 * 60 * rate_hz / 997;
        EXPECT_TRUE(comes_true([&] { return keyboard.nb_sent == keyboard.nb_wanted; }));
        jack_set_freewheel(keyboard.p_client, 0);
    }
    unsetenv("TINDELWAX_TEST_LOG");
    std::istringstream log{file_content(folder / "log")};
    int nb_notes = 0;
    long last = 0;
    int nb_uneven = 0;
    for (std::string line; std::getline(log, line);)
        if (line.find(": 90 ") != line.npos || line.find(": 80 ") != line.npos) {
            const long frame = std::stol(line);
            nb_uneven += nb_notes++ > 0 && frame - last != 997;
            last = frame;
        }
    EXPECT_EQ(nb_notes, keyboard.nb_wanted);
    EXPECT_LE(nb_uneven, 2) << "but where it begins and ends, late cycles are left out";
}

TEST_F(Jack, TheCommandOutlivesItsServerAndLeavesSilence) {
    const temporary_folder folder;
    setenv("TINDELWAX_TEST_LOG", (folder / "log").c_str(), 1);
    std::optional<jack_server> server{std::in_place, 64};
    running_process play{{TEST_COMMAND, "play", "--no-panel", "--midi", "sender", "--plugin",
                          TEST_PLUGINS "/sine_main.so"}};
    EXPECT_TRUE(play.says("plays through JACK as tindelwax, 48000 Hz, 64 frames\n"));
    unsetenv("TINDELWAX_TEST_LOG");
    running_process beside{{TEST_COMMAND, "play", "--no-panel"}};
    EXPECT_TRUE(beside.says("plays through JACK as tindelwax-2"));
    EXPECT_EQ(beside.end(SIGTERM), 0);
    const auto hold_a_key = [&play](int nb_messages) { // the last of which is not released
        sender keyboard;
        EXPECT_TRUE(play.says("sender:notes plays\n"));
        keyboard.nb_wanted = nb_messages;
        EXPECT_TRUE(comes_true([&] { return keyboard.nb_sent == nb_messages; }));
    };
    hold_a_key(1);
    server.reset();
    EXPECT_TRUE(play.says("the sound is gone; looking for it\n"));
    server.emplace(256);
    EXPECT_TRUE(play.says("plays through JACK as tindelwax, 48000 Hz, 256 frames\n"));
    hold_a_key(3);
    EXPECT_EQ(play.end(SIGINT), 0);
    const std::string log = file_content(folder / "log");
    const auto restart = log.rfind("start\n");
    EXPECT_LT(log.find(": 90 24 64\n"), log.find(": 80 24 40\n")) << "as its keyboard went\n"
                                                                  << log;
    EXPECT_LT(log.find(": 80 24 40\n"), restart) << log;
    EXPECT_LT(restart, log.find(": 90 2B 64\n")) << log;
    EXPECT_LT(log.rfind(": 80 2B 40\n"), log.rfind(": B0 78 00\n")) << log;
}

TEST_F(Jack, TheWindowsKeyboardPlaysAndItsClosingIsTheEnd) {
    constexpr std::uint8_t z_key = 52;
    const jack_server server{64};
    desktop user;
    running_process play{{TEST_COMMAND, "play"}};
    ASSERT_TRUE(play.says("plays through JACK"));
    recorder ear;
    ASSERT_TRUE(
        comes_true([&] { return user.property(user.focus(), XCB_ATOM_WM_NAME) == "Tindelwax"; }));
    user.strike(XCB_KEY_PRESS, z_key);
    EXPECT_TRUE(comes_true([&] { return ear.peak > 0.01f; }));
    user.strike(XCB_KEY_RELEASE, z_key);
    EXPECT_TRUE(comes_true([&] { return ear.peak.exchange(0) < 1e-4f; }));
    user.close(user.focus());
    EXPECT_EQ(play.end(0), 0);
}

TEST(LiveInstrument, ItsBlocksCallNothingThatAudioThreadsMustNot) {
    player played;
    played.live.start(rate_hz);
    std::vector<float> left(8192), right(8192);
    float* const outputs[] = {left.data(), right.data()};
    std::array<short_message, 200> messages;
    for (std::size_t i = 0; i < messages.size(); ++i)
        messages[i] =
            message_make(i % 3 ? message_note_on : message_control_change, i % 16, i % 128, 100);
    for (const std::size_t nb_frames : {64u, 100u, 8192u}) {
        played.live.press(60);
        watched_calls_begin();
        for (std::size_t i = 0; i < messages.size(); ++i)
            played.live.take(messages[i], i * nb_frames / messages.size());
        played.live.process(outputs, nb_frames);
        played.live.panic();
        played.live.process(outputs, nb_frames);
        const watched_calls calls = watched_calls_end();
        for (const long nb : calls.nb)
            EXPECT_EQ(nb, 0) << nb_frames;
    }
    EXPECT_EQ(played.live.take_levels().nb_held, 0);
}

} // namespace
