#include "check/watched_calls.h"
#include "live/sound_system.h"
#include "tests/host/live/jack_server.h"
#include "tests/host/live/other_servers.h"
#include "tests/host/midi_bytes.h"
#include "tests/host/platform/desktop.h"
#include "tests/temporary_folder.h"

#include <algorithm>
#include <sstream>

#include <gtest/gtest.h>

namespace {

constexpr int rate_hz = 48000;

/// An instrument, ready to be played.
struct player {
    std::unique_ptr<plugin> loaded = plugin_load(TEST_INSTRUMENT);
    plugin& instrument = *loaded;
    std::shared_ptr<swell> pedal = std::make_shared<swell>(instrument);
    console players{instrument,
                    {.sustains = true,
                     .learns = true,
                     .p_swell = pedal,
                     .mappings = {{74, std::nullopt, "Contour", true}},
                     .programs = {{.lines = {{1, {"Flute", 1.0f}}}}}}};
    console songs{instrument, {.p_swell = pedal}};
    live_instrument live;

    explicit player(live_song song = {}) : live{instrument, players, songs, std::move(song)} {}
};

struct note {
    std::uint64_t frame; ///< of the instrument that plays it in the same cycle
    short_message message;
};

/// Sends chords, or what it is given, at uneven frames, each noted.
struct sender {
    jack_client_t* p_client = jack_server::open("sender");
    jack_port_t* p_port =
        jack_port_register(p_client, "notes", JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0);
    std::atomic<const live_instrument*> p_live = nullptr; ///< that hears it
    std::atomic<int> nb_wanted = 0;                       ///< messages
    std::atomic<int> nb_sent = 0;
    std::atomic<long> nb_cycles = 0;
    jack_nframes_t next_time = 0;
    std::vector<short_message> script{}; ///< in place of chords
    std::vector<note> sent = std::vector<note>(100000);

    sender() {
        jack_set_process_callback(
            p_client,
            [](jack_nframes_t nb, void* self) { return static_cast<sender*>(self)->play(nb); },
            this);
        jack_activate(p_client);
    }
    ~sender() { jack_client_close(p_client); }

    short_message next_message() const {
        const auto i = static_cast<std::size_t>(nb_sent);
        const std::size_t key = 36 + i / 2 * 7 % 36;
        if (!script.empty())
            return script[i];
        return i % 2 ? message_release(0, key) : message_make(message_note_on, 0, key, 100);
    }
    bool send(std::vector<short_message> messages) {
        script = std::move(messages);
        nb_wanted = static_cast<int>(script.size());
        return comes_true([&] { return nb_sent == nb_wanted; });
    }

    int play(jack_nframes_t nb_frames) {
        void* p_buffer = jack_port_get_buffer(p_port, nb_frames);
        jack_midi_clear_buffer(p_buffer);
        const jack_nframes_t now = jack_last_frame_time(p_client);
        next_time = std::max(next_time, now);
        ++nb_cycles;
        for (; nb_sent < nb_wanted && next_time < now + nb_frames; next_time += 997) {
            const short_message message = next_message();
            const bool is_short = message_kind_of(message) == message_program_change;
            jack_midi_event_write(p_buffer, next_time - now, message.data(), is_short ? 2 : 3);
            const live_instrument* const p_heard = p_live;
            sent[static_cast<std::size_t>(nb_sent++)] = {
                (p_heard ? p_heard->nb_frames() : 0) + next_time - now, message};
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
    std::atomic<std::uint64_t> nb_in_cycles = 0; ///< fewer than were heard if one was missed

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

    int hear(jack_nframes_t nb_frames) {
        const float* p_left = static_cast<float*>(jack_port_get_buffer(p_ports[0], nb_frames));
        peak = std::max(peak.load(), *std::max_element(p_left, p_left + nb_frames));
        const std::uint64_t end = p_live ? p_live->nb_frames() : nb_frames;
        if (!is_connected || end > samples[0].size())
            return 0;
        if (nb_heard == 0)
            first_heard = end - nb_frames;
        nb_in_cycles += nb_frames;
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
    const auto loaded = plugin_load(TEST_INSTRUMENT);
    plugin& instrument = *loaded;
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
            if (one.frame >= frame + static_cast<unsigned>(block_frames))
                break;
            list.add(one.message, static_cast<int>(one.frame - frame));
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

/// Plays through the server that runs, and lets go of a key as its keyboard goes. Returns false
/// where another sound was heard, as it is where the machine is too late.
bool sounds_as_rendered(int block_frames) {
    std::optional<sender> hands{std::in_place};
    sender& keyboard = *hands;
    player played;
    const auto system = jack_system_open(played.live, {.midi = "sender:notes"});
    EXPECT_TRUE(system);
    keyboard.p_live = &played.live;
    recorder ear{&played.live, 20 * rate_hz};
    EXPECT_TRUE(comes_true([&] { return ear.nb_heard > 4800; }));
    keyboard.nb_wanted = 40;
    EXPECT_TRUE(comes_true([&] { return keyboard.nb_sent == 40; }));
    const auto end = static_cast<std::ptrdiff_t>(ear.nb_heard) + 9600;
    EXPECT_TRUE(comes_true([&] { return static_cast<std::ptrdiff_t>(ear.nb_heard) > end; }));
    ear.stop(); // which is heard as silence at last
    if (ear.nb_heard - ear.first_heard != ear.nb_in_cycles)
        return false;
    const auto sound = rendered(keyboard, ear, std::min(block_frames, 64));
    bool is_equal = true;
    for (std::size_t i = 0; i < 2; ++i) {
        const auto first = static_cast<std::ptrdiff_t>(ear.first_heard);
        EXPECT_GT(std::ranges::max(ear.samples[i]), 0.05f);
        is_equal = is_equal
                   && std::equal(ear.samples[i].begin() + first, ear.samples[i].begin() + end,
                                 sound[i].begin() + first);
    }
    keyboard.nb_wanted = 41; // which is a key that stays down
    EXPECT_TRUE(comes_true([&] { return played.live.take_levels().nb_held == 1; }));
    hands.reset();
    EXPECT_TRUE(
        comes_true([&] { return system->tend() && played.live.take_levels().nb_held == 0; }));
    return is_equal;
}

/// Repeats what a busy machine may be too late for.
template <typename Try>
bool is_heard_in_time(Try once) {
    for (int i = 0; i < 10; ++i)
        if (once() || testing::Test::HasFailure())
            return true;
    return false;
}

/// The server ends twice and starts again, so made.
template <typename Server, typename... Made>
void outlives(running_process& play, const std::string& greeting, std::optional<Server>& server,
              const Made&... made) {
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(play.says(greeting));
        server.reset();
        EXPECT_TRUE(play.says("the sound is gone; looking for it\n"));
        server.emplace(made...);
    }
    EXPECT_EQ(play.end(SIGINT), 0);
}

TEST_F(Jack, NotesSoundOnTheirFrameAndAsARenderMakesThem) {
    for (const int block_frames : {16, 64, 256, 1024}) {
        SCOPED_TRACE(block_frames);
        const jack_server server{block_frames};
        EXPECT_TRUE(is_heard_in_time([=] { return sounds_as_rendered(block_frames); }));
    }
}

/// PipeWire brings a library of its own, with which another process of this test begins.
TEST_F(Jack, PipeWireDoesTheSame) {
    const char* const p_library = std::getenv("LD_LIBRARY_PATH");
    if (p_library && std::string{p_library} == pipewire_server::library_folder) {
        EXPECT_TRUE(
            is_heard_in_time([] { return sounds_as_rendered(pipewire_server::block_frames); }));
        return;
    }
    const temporary_folder folder;
    std::optional<pipewire_server> server{std::in_place, folder};
    setenv("LD_LIBRARY_PATH", pipewire_server::library_folder, 1);
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1); // the library's own
    running_process self{{"/proc/self/exe", "--gtest_filter=Jack.PipeWireDoesTheSame"}};
    EXPECT_TRUE(self.says("[  PASSED  ] 1 test")) << self.rest();
    running_process play{{TEST_COMMAND, "play", "--no-panel"}};
    outlives(play, "plays through JACK as tindelwax, 48000 Hz, 256 frames\n", server, folder);
    unsetenv("LD_LIBRARY_PATH");
}

TEST(Alsa, LeadsToADesktopsServer) {
    const temporary_folder folder;
    const std::string song = folder / "song.mid", rendered = folder / "song.wav";
    file_write(song, midi_bytes::song(0, 480, {"00 90 3C 40 83 60 80 3C 00"}));
    setenv("TINDELWAX_SEED", "1", 1);
    running_process render{
        {TEST_COMMAND, "render", song, "-o", rendered, "--rate", "48000", "--bits", "32"}};
    EXPECT_EQ(render.end(0), 0);
    std::optional<pulse_server> server{std::in_place, folder};
    EXPECT_TRUE(is_heard_in_time([&] {
        running_process play{{TEST_COMMAND, "play", "--no-panel", song}};
        EXPECT_TRUE(play.says("plays through ALSA as default, 48000 Hz, 128 frames\n"));
        EXPECT_EQ(play.end(0), 0);
        constexpr std::size_t nb_bytes = rate_hz / 2 * 2 * sizeof(float);
        const std::string wave = file_content(rendered);
        return file_content(folder / "heard").substr(0, nb_bytes)
               == wave.substr(wave.find("data") + 8, nb_bytes);
    }));
    running_process play{{TEST_COMMAND, "play", "--no-panel"}};
    outlives(play, "plays through ALSA", server, folder);
}

TEST_F(Jack, NoNoteIsMissingInTenMinutesOfFreewheeling) {
    const temporary_folder folder;
    setenv("TINDELWAX_TEST_LOG", (folder / "log").c_str(), 1);
    const jack_server server{1024};
    sender keyboard;
    {
        const auto loaded = plugin_load(TEST_PLUGINS "/sine_main.so");
        plugin& sine = *loaded;
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
    server.reset();
    EXPECT_TRUE(play.says("the sound is gone; looking for it\n"));
    server.emplace(256);
    EXPECT_TRUE(play.says("plays through JACK as tindelwax, 48000 Hz, 256 frames\n"));
    EXPECT_EQ(play.end(SIGINT), 0);
    const std::string log = file_content(folder / "log");
    const auto restart = log.rfind("start\n");
    EXPECT_LT(log.find("start\n"), restart) << log;
    EXPECT_LT(restart, log.rfind(": B0 78 00\n")) << log;
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

TEST_F(Jack, WhatIsLearnedLastsAndProgramsDrawRegistrations) {
    const temporary_folder folder;
    for (const char* variable : {"XDG_STATE_HOME", "XDG_DATA_HOME"})
        setenv(variable, folder.path.c_str(), 1);
    const jack_server server{64};
    const desktop user;
    constexpr std::size_t glass = 7;
    const short_message turn_up = message_make(message_control_change, 0, 20, 127);
    {
        running_process play{{TEST_COMMAND, "play", "--learn", "--scale", "2", "--midi", "sender"}};
        sender keyboard;
        EXPECT_TRUE(play.says("sender:notes plays\n"));
        user.click(150, 240); // the first tab, in twice its size
        EXPECT_TRUE(keyboard.send(std::vector(50, turn_up)));
        EXPECT_TRUE(play.says("learned 20:1=Vibrato\n"));
        EXPECT_EQ(play.end(SIGTERM), 0);
    }
    EXPECT_TRUE(running_process({TEST_COMMAND, "map"}).says("--map 20:1=Vibrato\n"));
    {
        running_process play{
            {TEST_COMMAND, "play", "--no-panel", "--midi", "sender", "--save", folder / "end.txt"}};
        sender keyboard;
        EXPECT_TRUE(play.says("sender:notes plays\n"));
        EXPECT_TRUE(keyboard.send({message_make(message_program_change, 0, glass, 0), turn_up}));
        EXPECT_EQ(play.end(SIGINT), 0);
    }
    EXPECT_EQ(file_content(folder / "end.txt"),
              "# end\nFlute=0\nBright=1\nBrass=0\nMellow=0\nVibrato=1\nBassChords=0\nVolume=0.173\n"
              "Contour=0\nBass=0.122\nSplit=1\n");
    running_process forgetful{{TEST_COMMAND, "play", "--no-panel", "--forget"}};
    EXPECT_TRUE(forgetful.says("plays"));
    EXPECT_EQ(forgetful.end(SIGTERM), 0);
    EXPECT_TRUE(running_process({TEST_COMMAND, "map"}).says("No controller was learned"));
}

TEST_F(Jack, ATerminalShowsTheSoundAndItsKeysPlay) {
    const jack_server server{64};
    running_process play{{TEST_COMMAND, "play", "--no-panel"}, running_process::where::in_terminal};
    EXPECT_TRUE(play.says(" 48 kHz/64 "));
    for (const auto& [keys, text] : {std::pair{"z", "1 keys"},
                                     {"czv", "2 keys"},
                                     {"\x1B", "0 keys"},
                                     {"\x1B[122;1:1u\x1B[122;1:2u", "1 keys"},
                                     {"\x1B[122;1:3u", "0 keys"}}) {
        play.type(keys);
        EXPECT_TRUE(play.says(text)) << keys;
    }
    play.type("\x03");
    EXPECT_TRUE(play.says("\x1B[<u")) << "the terminal is as it was";
    EXPECT_EQ(play.end(0), 0);
}

TEST(LiveInstrument, ASongEndsAllItsSoundWhereItJumps) {
    const temporary_folder folder;
    setenv("TINDELWAX_TEST_LOG", (folder / "log").c_str(), 1);
    {
        const auto loaded = plugin_load(TEST_PLUGINS "/sine_main.so");
        plugin& sine = *loaded;
        console desk{sine, {}};
        const std::string track = "00 90 3C 40 83 60 C0 00"; // half a second, its note held
        live_instrument live{
            sine,
            desk,
            desk,
            {.song = midi_file_read(midi_bytes::song(0, 480, {track})), .loops = true}};
        live.start(rate_hz);
        std::vector<float> samples(1000);
        float* const output = samples.data();
        for (int i = 0; i < 60; ++i)
            live.process({&output, 1}, samples.size());
    }
    unsetenv("TINDELWAX_TEST_LOG");
    const std::string log = file_content(folder / "log");
    EXPECT_NE(log.find("24000: C0 00 00\n24000: 80 3C 40\n24000: B0 78 00\n"), log.npos) << log;
    EXPECT_NE(log.find("24000: BF 78 00\n24000: 90 3C 40\n48000: C0 "), log.npos) << log;
}

TEST(LiveInstrument, TheSwellPedalScalesWhatAnythingElseSets) {
    constexpr int volume = 6;
    player played;
    played.live.start(rate_hz);
    float samples[64];
    float* const output = samples;
    const auto after = [&](std::uint8_t controller, std::uint8_t value) {
        const short_message message = message_make(message_control_change, 0, controller, value);
        played.live.take(message, 0);
        played.live.process({&output, 1}, std::size(samples));
        return played.instrument.parameter(volume) * 127;
    };
    EXPECT_NEAR(after(controller_expression, 0), 0, 1e-4);
    EXPECT_NEAR(after(7, 20), 20, 1e-4) << "the instrument's own";
    EXPECT_NEAR(after(1, 0), 0, 1e-4) << "now that the pedal has seen it";
    EXPECT_NEAR(after(controller_expression, 127), 20, 1e-4);
    played.instrument.set_parameter(volume, 0.5f);
    played.players.touch(volume, 0.5f);
    EXPECT_NEAR(after(controller_expression, 0), 0, 1e-4);
    EXPECT_NEAR(after(controller_expression, 127), 63.5f, 1e-4);
}

TEST(LiveInstrument, ItsBlocksCallNothingThatAudioThreadsMustNot) {
    player played{{.song = midi_file_read(midi_bytes::song(0, 480, {"00 90 3C 40 20 C0 00"})),
                   .loops = true}};
    played.live.start(rate_hz);
    std::vector<float> left(8192), right(8192);
    float* const outputs[] = {left.data(), right.data()};
    constexpr message_kind kinds[] = {message_note_on, message_control_change, message_note_off,
                                      message_program_change};
    std::array<short_message, 512> messages;
    for (std::size_t i = 0; i < messages.size(); ++i)
        messages[i] = message_make(kinds[i % 4], i % 3, i / 4 % 140, 100); // some with bad data
    for (const std::size_t nb_frames : {64u, 100u, 8192u}) {
        played.live.press(60);
        watched_calls_begin();
        for (std::size_t i = 0; i < messages.size(); ++i)
            played.live.take(message_view{messages[i]}.first(messages[i][0] < 0xC0 ? 3 : 2),
                             i * nb_frames / messages.size());
        played.players.touch(6, 0.5f);
        played.live.process(outputs, nb_frames);
        played.live.panic();
        played.live.process(outputs, nb_frames);
        const watched_calls calls = watched_calls_end();
        for (const long nb : calls.nb)
            EXPECT_EQ(nb, 0) << nb_frames;
    }
    played.live.finish();
    for (int i = 0; i < 2; ++i) {
        played.live.take(messages[0], 0);
        played.live.process(outputs, 8192);
        EXPECT_EQ(played.live.take_levels().nb_held, 0);
    }
}

} // namespace
