#include "tests/host/command/command_fixture.h"
#include "tests/host/midi_bytes.h"

#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using midi_bytes::bytes;
using midi_bytes::song;

/// At 480 ticks a quarter and 120 bpm, 83 60 is half a second and 24000 frames at 48 kHz.
const auto half_second = song(0, 480, {"00 90 45 40 83 60 80 45 40"});

struct Command : command_fixture {
    Command() { file_write(folder / "song.mid", half_second); }

    process_result run(words arguments, const std::string& plugin = "sine_main") {
        const auto has = [&](const char* word) { return std::ranges::count(arguments, word) > 0; };
        if (has("song.mid") && !has("-o"))
            arguments.insert(arguments.end(), {"-o", "song.wav"});
        return command_fixture::run(std::move(arguments), plugin);
    }

    /// What the instrument noted about its host during a render.
    std::string played(words arguments) {
        surroundings.environment["TINDELWAX_TEST_LOG"] = folder / "log";
        arguments.insert(arguments.begin(), {"render", "song.mid"});
        const process_result result = run(arguments);
        EXPECT_EQ(result.status, 0) << result.err;
        return file_content(folder / "log");
    }

    /// The samples of a WAV file in 32-bit floating point, without knowing its chunks.
    static std::vector<float> samples(const std::string& wav) {
        const auto data = wav.find("data");
        if (data == wav.npos)
            return {};
        std::vector<float> result((wav.size() - data - 8) / sizeof(float));
        std::memcpy(result.data(), wav.data() + data + 8, result.size() * sizeof(float));
        return result;
    }

    static float peak(const std::string& wav) {
        float size = 0;
        for (const float sample : samples(wav))
            size = std::max(size, std::abs(sample));
        return size;
    }
};

TEST_F(Command, RendersBesideTheUserUnderTheSongsNameIfThatIsFree) {
    const process_result result = command_fixture::run({"render", "song.mid"}, "sine_main");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(contains(result.out, "song.wav: 0:00.") && contains(result.out, "1 note played"))
        << result.out;
    EXPECT_TRUE(contains(result.out, "peak -12.0 dBFS") && contains(result.out, "faster"))
        << result.out;
    EXPECT_NEAR(peak(file_content(folder / "song.wav")), 0.25f, 0.001f);
    EXPECT_EQ(folder.nb_files(), 2u) << "something else was left";

    file_write(folder / "song.wav", std::string{"before"});
    std::filesystem::permissions(folder / "song.wav", std::filesystem::perms{0640});
    expect_one_sentence_and_no_file(
        {{"render", "song.mid"}, "sine_main", 2, "replace it with -o song.wav"});
    EXPECT_EQ(file_content(folder / "song.wav"), "before");
    EXPECT_EQ(run({"render", "song.mid"}).status, 0);
    EXPECT_NE(file_content(folder / "song.wav"), "before");
    EXPECT_EQ(std::filesystem::status(folder / "song.wav").permissions(),
              std::filesystem::perms{0640});
}

TEST_F(Command, NamesDoNotSteerTheTerminal) {
    const std::string name = "a\x1B[2J\n\xC2\x9B\xC3\xA4";
    const std::string shown = "a\\x1B[2J\\x0A\xC2\\x9B\xC3\xA4";
    expect_one_sentence_and_no_file({{"render", name}, "", 2, shown + " cannot be read"});
    file_write(folder / name, std::vector(half_second.begin(), half_second.end() - 6));
    const process_result result = command_fixture::run({"render", name}, "sine_main");
    EXPECT_TRUE(contains(result.out, shown + ".wav: ")) << result.out;
    EXPECT_TRUE(contains(result.err, "warning: " + shown + ": ")) << result.err;
}

TEST_F(Command, DrivesThePluginInOrderAndAtTheFrame) {
    struct drive {
        bytes song;
        words options;
        const char* log; ///< a part
    };
    for (const drive& row :
         {drive{half_second,
                {"--set", "volume=0.5", "--rate", "44100", "--block", "100"},
                "1 Quenmar, 1 Tindelwax command, can 1 0, rate 48000, block 64, level 1\nopen\n"
                "rate 44100\nblock 100\nparameter 0 0.50\nmains 1\nrate 44100, block 100, level "
                "4\nstart\n0: 90 45 40\n0: tempo 120.0 from 0.00\n22050: 80 45 40\nstop\n"
                "mains 0\nclose\n"},
          // A quarter at 60 bpm from half a second on; the drums are left out.
          {song(0, 480,
                {"00 90 45 40 00 99 24 40 00 F0 02 7D F7 83 60 FF 51 03 0F 42 40 83 60 80 45 40"}),
           {"--transpose", "-12"},
           "0: 90 39 40\n0: dump F0 7D F7\n0: tempo 120.0 from 0.00\n24000: tempo 60.0 from 1.00\n"
           "72000: 80 39 40\n"},
          {song(0, 480, {"00 90 45 40 0A 80 45 40 87 40 90 45 40 0A 80 45 40"}), // a rest is no end
           {},
           "49000: 80 45 40\n"}}) {
        file_write(folder / "song.mid", row.song);
        EXPECT_TRUE(contains(played(row.options), row.log)) << file_content(folder / "log");
    }
}

TEST_F(Command, MoreSimultaneousEventsThanOneListHoldsAllArrive) {
    std::string track = "00 B0 07 00";
    for (int i = 0; i < 2500; ++i)
        track += " 00 07 01";
    file_write(folder / "song.mid", song(0, 480, {track}));
    const std::string log = played({});
    EXPECT_EQ(nb_lines(log), 2501 + 11) << log.substr(0, 200);
}

TEST_F(Command, TheTailEndsWithTheSound) {
    // Released at 24000, the test's sine is below -90 dBFS after some 3900 frames of 48 kHz.
    for (const auto& [tail, nb_frames, tolerance] :
         {std::tuple{"5", 24000 + 3900 + 4800, 1000}, {"0", 24000, 0}}) {
        (void)run({"render", "song.mid", "--length", "0.5", "--tail", tail});
        EXPECT_NEAR(static_cast<double>(samples(file_content(folder / "song.wav")).size()) / 2,
                    nb_frames, tolerance);
    }
}

TEST_F(Command, TheSameCommandGivesTheSameBytes) {
    (void)run({"render", "song.mid", "-o", "a.wav"});
    (void)run({"render", "song.mid", "-o", "b.wav", "--bits", "32"});
    (void)run({"render", "song.mid", "-o", "c.wav", "--seed", "2"});
    EXPECT_EQ(file_content(folder / "a.wav"), file_content(folder / "b.wav"));
    EXPECT_NE(file_content(folder / "a.wav"), file_content(folder / "c.wav"));
}

TEST_F(Command, OneSeedIsOneFileInEveryFormat) {
    const std::filesystem::path vst = TEST_INSTRUMENT;
    const std::pair<std::string, const char*> formats[] = {
        {vst, "(0x54696E64)"},
        {vst.parent_path() / "tindelwax.clap", "example.quenmar.tindelwax"},
        {vst.parent_path() / "tindelwax.lv2", "https://quenmar.example/tindelwax"}};
    for (const auto& [file, id] : formats) {
        const std::string info = run({"info"}, file).out;
        for (const std::string part :
             {"Tindelwax\n", "  vendor      Quenmar\n", id, "  parameters  10\n",
              "Contour     0.1000  0.1", "Vibrato     0.0000  OFF\n"})
            EXPECT_TRUE(contains(info, part)) << part << "\n" << info;
        const process_result render =
            run({"render", "song.mid", "-o", "a.wav", "--seed", "2", "--set", "Vibrato=1", "--set",
                 "Flute=0", "--set", "Contour=0.4", "--rate", "44100"},
                file);
        EXPECT_EQ(render.status, 0) << render.err;
        if (file == vst)
            std::filesystem::rename(folder.path / "a.wav", folder.path / "vst.wav");
        else
            EXPECT_EQ(file_content(folder / "a.wav"), file_content(folder / "vst.wav")) << file;
        EXPECT_GT(peak(file_content(folder / "vst.wav")), 0.01f);
    }
}

TEST_F(Command, PipesCarryTheSameFileAndNothingElse) {
    (void)run({"render", "song.mid"});
    surroundings.input_file = folder / "song.mid";
    for (const words& arguments : {words{"render", "-", "-o", "-"}, {"render", "-"}}) {
        const process_result result = run(arguments);
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_TRUE(result.out == file_content(folder / "song.wav"));
        EXPECT_TRUE(contains(result.err, "1 note played")) << result.err;
        EXPECT_FALSE(contains(result.err, "###")) << "a progress bar without a terminal";
    }
}

TEST_F(Command, LevelsAreBroughtWhereTheUserWantsThem) {
    const std::vector<std::pair<words, float>> rows{{{"--gain", "+6.0206"}, 0.5f},
                                                    {{"--normalize", "-6.0206"}, 0.5f},
                                                    {{"--normalize=0"}, 1.0f},
                                                    {{"--normalize"}, 0.8913f},
                                                    {{"--set", "Volume=0", "--normalize"}, 0.0f}};
    for (const auto& [options, wished] : rows) {
        words arguments = options; // the level is optional
        arguments.insert(arguments.begin(), "render");
        arguments.emplace_back("song.mid");
        const process_result result = run(arguments);
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_FALSE(contains(result.out, "no numbers")) << result.out;
        EXPECT_NEAR(peak(file_content(folder / "song.wav")), wished, 0.002f) << options[0];
    }
}

TEST_F(Command, TheReportTellsWhatIsNotHeardAndWhy) {
    struct account {
        const char* track;
        words options;
        const char* told;
        const char* plugin = "sine_main";
        const char* nb_outputs = "2";
    };
    for (const account& row :
         {account{"00 90 50 40 00 90 3C 40",
                  {},
                  "1 note played\n1 note outside the keyboard (MIDI notes 24 to 72); "
                  "--transpose -8 would leave 0\npeak"},
          {"00 90 50 40 00 90 3C 40", {}, "2 notes played\npeak", "sine_second_entry"},
          {"00 99 24 40 00 99 25 40",
           {},
           "0 notes played\n2 notes on channel 10 left out; --channels all plays them\nsilence"},
          {"00 90 3C 40",
           {"--channels", "2"},
           "0 notes played\n1 note on channels not asked for\nsilence"},
          {"00 90 3C 40", {"--gain", "20"}, " samples that would clip\n"},
          {"00 90 3C 40", {"--gain", "20", "--bits", "16"}, " clipped samples\n"},
          {"00 90 3C 40", {}, "the first 2 of the instrument's 4 outputs", "sine_main", "4"},
          {"00 90 3C 40", {}, "1 note played\npeak -12.0 dBFS", "sine_main", "1"}}) {
        file_write(folder / "song.mid", song(0, 480, {row.track + std::string{" 8F 00 C0 01"}}));
        surroundings.environment["TINDELWAX_TEST_OUTPUTS"] = row.nb_outputs;
        words arguments{"render", "song.mid"};
        arguments.insert(arguments.end(), row.options.begin(), row.options.end());
        const process_result result = run(arguments, row.plugin);
        EXPECT_TRUE(contains(result.out, row.told)) << row.told << result.out << result.err;
        EXPECT_EQ(contains(result.err, "warning: song.wav is clipped"),
                  contains(result.out, " clipped") && !contains(result.out, " 0 clipped"))
            << result.err;
        const int nb_channels = file_content(folder / "song.wav")[22];
        EXPECT_EQ(nb_channels, std::min(2, std::atoi(row.nb_outputs))) << row.told;
    }
}

TEST_F(Command, InfoTellsWhatThePluginSaysOfItself) {
    const process_result result = run({"info"});
    EXPECT_EQ(result.status, 0) << result.err;
    for (const char* part : {"Sine\n", "longer than any host of its interface expects, alas\n",
                             "'Tind' (0x54696E64)", "synthesizer", "0 in, 2 out", "instrument",
                             "Volume     1.0000  ON\n", "MIX        0.7500  ON\n"})
        EXPECT_TRUE(contains(result.out, part)) << part << "\n" << result.out;
    EXPECT_FALSE(contains(result.out, "EOF"));
}

TEST_F(Command, FindsThePluginBesideItself) {
    std::filesystem::copy(TEST_COMMAND, folder.path / "tindelwax");
    const process_result alone = process_run({folder / "tindelwax", "info"});
    EXPECT_EQ(alone.status, 2);
    EXPECT_TRUE(contains(alone.err, folder / "tindelwax.so is missing")) << alone.err;
    std::filesystem::copy(test_plugin("sine_main"), folder.path / "tindelwax.so");
    EXPECT_EQ(process_run({folder / "tindelwax", "info"}).status, 0);
}

TEST_F(Command, PedalsControllersAndARegistrationComeBetweenSongAndInstrument) {
    file_write(folder / "song.mid",
               song(0, 100, // 100 ticks a quarter, 240 frames each
                    {"00 B0 40 7F 00 90 3C 40 05 80 3C 00 05 91 3E 40 05 81 3E 00 05 B0 40 00 "
                     "00 B0 4A 00 00 B1 4A 7F 00 B2 15 7F 00 B3 0B 40 00 C0 01"}));
    file_write(folder / "mine.txt", std::string{"# Mine\n\n# Words.\nVibrato = on\nMix=0.125\n"});
    const std::string log =
        played({"--sustain", "--expression", "--map", "-74:1=Mix", "--map", "21=Vibrato",
                "--registration", "mine.txt", "--set", "Volume=0.5", "--set", "Mix=0.5"});
    const auto until_start = log.substr(0, log.find("start\n"));
    EXPECT_TRUE(contains(until_start, "parameter 1 1.00\nparameter 2 0.12\n")) << log;
    EXPECT_TRUE(contains(until_start, "parameter 0 0.50\nparameter 2 0.50\n")) << log;
    const auto after_start = log.substr(until_start.size());
    EXPECT_TRUE(contains(after_start, "2400: 91 3E 40\n3600: 81 3E 00\nparameter 2 1.00\n"
                                      "parameter 1 1.00\nparameter 0 0.25\n4800: 80 3C 40\n"
                                      "4800: B1 4A 7F\n4800: C0 01 00\nstop\n"))
        << log;
}

TEST_F(Command, HelpFitsATerminal) {
    for (const words& arguments : {words{"--help"},
                                   {"render", "--help"},
                                   {"panel", "--help"},
                                   {"play", "--help"},
                                   {"info", "--help"},
                                   {"check", "--help"}}) {
        words whole{TEST_COMMAND};
        whole.insert(whole.end(), arguments.begin(), arguments.end());
        const process_result result = process_run(whole);
        EXPECT_EQ(result.status, 0);
        EXPECT_GT(nb_lines(result.out), 5);
        EXPECT_LE(nb_lines(result.out), 45) << result.out;
        std::istringstream lines{result.out};
        for (std::string line; std::getline(lines, line);)
            EXPECT_LE(line.size(), 80u) << line;
    }
}

TEST_F(Command, EveryFaultGetsOneSentenceAndLeavesNoFile) {
    file_write(folder / "noise.mid", std::string{"MTrk no header"});
    file_write(folder / "endless.mid", song(0, 1, {"FF FF FF 7F C0 01"}));
    file_write(folder / "bad.txt", std::string{"Mix=1\nDepth=1\n"});
    file_write(folder / "noise.so", std::string{"no library"});
    file_write(folder / "mz.so", std::string{"MZ"});
    std::string library = file_content(test_plugin("sine_main"));
    library[18] = '\x03'; // the processor
    file_write(folder / "foreign.so", library);
    library[4] = '\x01'; // the width
    file_write(folder / "narrow.so", library);
    const complaint rows[] = {
        {{}, "", 2, "a command is missing; the commands are render, play, panel"},
        {{"bogus"}, "", 2, "\"bogus\" is no command; the commands are render, play, panel"},
        {{"--loud"}, "", 2, "\"--loud\" is no command"},
        {{"render"}, "", 2, "song"},
        {{"render", "song.mid", "--rate", "1e4"}, "", 2, "whole number from 8000 to 192000; \"1e4"},
        {{"render", "song.mid", "--rate", "010"}, "", 2, "\"010\" is none"},
        {{"render", "song.mid", "--tail", "nan"}, "", 2, "--tail takes a number from 0 to 5"},
        {{"render", "song.mid", "--bits", "20"}, "", 2, "16, 24 or 32"},
        {{"render", "song.mid", "--seed", "-1"}, "", 2, "from 0 to 4294967295"},
        {{"render", "song.mid", "--block"}, "", 2, "--block takes one value"},
        {{"render", "song.mid", "--loud"}, "", 2, "--loud"},
        {{"render", "song.mid", "--gain", "1", "--normalize"}, "", 2, "--gain"},
        {{"render", "--normalize", "loud", "song.mid"}, "", 2, "--normalize takes a number"},
        {{"render", "song.mid", "--channels", "0"}, "sine_main", 2, "1 to 16"},
        {{"render", "song.mid", "--set", "Volume"}, "sine_main", 2, "Name=value"},
        {{"render", "song.mid", "--map", "120=Mix"}, "sine_main", 2, "is no such mapping"},
        {{"render", "song.mid", "--map", "7=Depth"}, "sine_main", 2, "no parameter \"Depth\""},
        {{"render", "song.mid", "--registration", "none"}, "sine_main", 2, "there are "},
        {{"render", "song.mid", "--registration", "bad.txt"}, "sine_main", 2, "bad.txt, line 2: "},
        {{"render", "song.mid", "--set", "Depth=1"}, "sine_main", 2, "Volume, Vibrato, Mix, MIX"},
        {{"render", "song.mid", "--set", "mix=1"}, "sine_main", 2, "more than one"},
        {{"render", "song.mid", "-o", "song.mp3"}, "sine_main", 2, ".wav or .flac"},
        {{"render", "song.mid", "-o", "song.w\xE4v"}, "sine_main", 2, ".wav or .flac"},
        {{"render", "song.mid", "-o", "./.WAV"}, "sine_main", 2, "call it song.WAV"},
        {{"render", "song.mid", "-o", "a.flac", "--bits", "32"}, "sine_main", 2, "FLAC"},
        {{"render", "none.mid"}, "sine_main", 2, "none.mid cannot be read: No such file"},
        {{"render", "."}, "sine_main", 2, "directory"},
        {{"render", "./"}, "sine_main", 2, "./ cannot be read: Is a directory"},
        {{"render", "noise.mid"}, "sine_main", 2, "noise.mid is no MIDI file"},
        {{"render", "/dev/zero"}, "sine_main", 2, "8 MiB"},
        {{"render", "endless.mid"}, "sine_main", 2, "--length"},
        {{"render", "song.mid", "-o", "no/a.wav"}, "sine_main", 1, "no/a.wav: No such"},
        {{"info"}, "sine_without_entry", 2, "exports neither main nor VSTPluginMain"},
        {{"info"}, "no_such_plugin", 2, "no_such_plugin.so is missing; choose another"},
        {{"info", "--plugin", "noise.so"}, "", 2, "it is no library; choose another plug-in with"},
        {{"info", "--plugin", "."}, "", 2, "it is no library"},
        {{"info", "--plugin", "mz.so"}, "", 2, "it is a Windows library"},
        {{"info", "--plugin", "narrow.so"}, "", 2, "it is for programs of another width"},
        {{"info", "--plugin", "foreign.so"}, "", 2, "it is for another processor"},
        {{"info", "--plugin", TEST_COMMAND}, "", 2, "it is a program, no library"},
    };
    for (const complaint& row : rows)
        expect_one_sentence_and_no_file(row);
    for (const auto& [fault, part] :
         {std::pair{"answers null", "refuses to start"},
          {"exits", "ends the process in a trial run"},
          {"answers rubbish", "answers something else than a record; choose another"},
          {"endless parameters", "impossible number of parameters"},
          {"processes nothing", "sine_main.so cannot process audio in single precision; choose"}}) {
        surroundings.environment["TINDELWAX_TEST_FAULT"] = fault;
        expect_one_sentence_and_no_file({{"render", "song.mid"}, "sine_main", 1, part});
    }
}

TEST_F(Command, WhateverStopsARenderLeavesNoFile) {
    const int nameless = open(folder.path.c_str(), O_TMPFILE | O_WRONLY, 0600);
    close(nameless);
    ASSERT_EQ(mkfifo((folder / "pipe.wav").c_str(), 0600), 0);
    struct stop {
        const char* signals; ///< from a frame on, -1 to hang; the trial run ends before 20000
        words arguments;
        int status;
        const char* part;
    };
    for (const stop& row :
         {stop{"0 6", {"song.mid"}, 1, "crashes in a trial run (Aborted)"},
          {"0 6", {"song.mid", "--block", "65536"}, 1, "crashes in a trial run (Aborted)"},
          {"20000 6", {"song.mid"}, 128 + SIGABRT, ""},
          {"20000 15", {"song.mid"}, 128 + SIGTERM, "interrupted\n"},
          {"20000 -1", {"song.mid"}, 128 + SIGINT, "interrupted\n"},
          {"-1", {"song.mid", "-o", "pipe.wav"}, 128 + SIGINT, ""}, // that nobody reads
          {"-1", {"pipe.wav", "-o", "a.wav"}, 128 + SIGINT, ""}}) { // nor writes
        surroundings.environment["TINDELWAX_TEST_SIGNALS"] = row.signals;
        surroundings.before =
            row.status == 128 + SIGINT ? "timeout --preserve-status -k 5 -s INT 0.3" : "";
        words arguments = row.arguments;
        arguments.insert(arguments.begin(), "render");
        const process_result result = run(arguments);
        EXPECT_EQ(result.status, row.status) << row.signals << result.err;
        EXPECT_TRUE(contains(result.err, row.part)) << row.signals << result.err;
        if (nameless >= 0) { // else a process that dies leaves its temporary
            EXPECT_EQ(folder.nb_files(), 2u) << row.signals;
        }
    }
}

TEST_F(Command, ClosedStreamsAreNotTakenByFiles) {
    (void)run({"render", "song.mid", "-o", "a.wav"});
    surroundings.after = "<&- >&- 2>&-";
    EXPECT_EQ(run({"render", "song.mid", "-o", "b.wav"}).status, 0);
    EXPECT_EQ(file_content(folder / "a.wav"), file_content(folder / "b.wav"));
    EXPECT_EQ(run({"render", "-", "-o", "c.wav"}).status, 2);
    EXPECT_EQ(run({"render", "song.mid", "-o", "-"}).status, 1);
    EXPECT_EQ(run({"check", "--list"}, "").status, 1);
}

TEST_F(Command, MemoryDoesNotGrowWithTheRender) {
    const auto peak_after = [this](const char* seconds) {
        const words arguments{"render", "song.mid", "--length",   seconds,
                              "--rate", "192000",   "--normalize"};
        EXPECT_EQ(run(arguments).status, 0);
        rusage usage{};
        getrusage(RUSAGE_CHILDREN, &usage);
        return usage.ru_maxrss;
    };
    file_write(folder / "song.mid", song(0, 480, {"81 E1 00 C0 01"})); // 30 s, 46 MB of samples
    const long peak_of_one_second = peak_after("1");
    EXPECT_LT(peak_after("30"), peak_of_one_second + 16384);
}

TEST_F(Command, WhereNothingMoreCanBeWrittenTheReasonIsTold) {
    std::filesystem::create_symlink("/dev/full", folder / "full.wav");
    struct obstacle {
        words arguments;
        const char* temporary_folder;
        const char* after;
        const char* part;
    };
    for (const obstacle& row :
         {obstacle{{"render", "song.mid", "-o", "-"},
                   "/tmp",
                   ">/dev/full",
                   "cannot write standard output: No space left"},
          {{"render", "song.mid", "-o", "full.wav"}, "/tmp", "", "full.wav: No space left"},
          {{"render", "song.mid", "-o", "-"}, "/tmp", "| head -c 1 >/dev/null", "its reader ended"},
          {{"render", "song.mid", "-o", "-"}, "/no such folder", "", "set TMPDIR"},
          {{"render", "song.mid", "--normalize"}, "/no such folder", "", "set TMPDIR"},
          {{"check", "--list"}, "/tmp", ">/dev/full", "standard output: No space left"},
          {{"info"}, "/tmp", ">/dev/full", "cannot write to standard output: No space left"}}) {
        surroundings.environment["TMPDIR"] = row.temporary_folder;
        surroundings.after = row.after;
        const process_result result =
            run(row.arguments, row.arguments[0] == "check" ? "" : "sine_main");
        EXPECT_EQ(result.status, *row.after == '|' ? 0 : 1) << row.part;
        EXPECT_TRUE(contains(result.err, row.part)) << row.part << result.err;
        EXPECT_FALSE(std::filesystem::exists(folder / "song.wav")) << row.part;
    }
}

} // namespace
