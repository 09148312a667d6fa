#include "midi_file/midi_file.h"

#include "tests/host/midi_bytes.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <sstream>

namespace {

using midi_bytes::bytes;
using midi_bytes::song;

/// Each event as "seconds: hex", in milliseconds to the microsecond.
std::string played(const midi_song& read) {
    std::string text;
    for (const midi_event& event : read.events) {
        std::array<char, 32> piece{};
        std::snprintf(piece.data(), piece.size(), "%.3f:", event.seconds * 1000);
        text += (text.empty() ? "" : " | ") + std::string{piece.data()};
        for (const std::uint8_t byte : midi_song_message(read, event)) {
            std::snprintf(piece.data(), piece.size(), " %02X", byte);
            text += piece.data();
        }
    }
    return text;
}

std::string joined(const std::vector<std::string>& lines) {
    std::ostringstream text;
    for (const std::string& line : lines)
        text << line << "\n";
    return text.str();
}

struct reading {
    const char* name;
    bytes file;
    const char* events;
    double seconds;
    const char* warning = ""; ///< a part of the only one
};

// At 500 ticks a quarter and 120 bpm a tick is a millisecond.
const std::vector<reading> readings{
    {"every kind of channel message",
     song(0, 500,
          {"00 90 3C 40 01 80 3C 40 01 A0 3C 10 01 B0 07 64 01 C0 05 01 D0 11 01 E0 00 40"}),
     "0.000: 90 3C 40 | 1.000: 80 3C 40 | 2.000: A0 3C 10 | 3.000: B0 07 64 | 4.000: C0 05 | "
     "5.000: D0 11 | 6.000: E0 00 40",
     0.006},
    {"delta times of one to four bytes",
     song(0, 500, {"7F C0 01 81 00 C0 02 81 80 00 C0 03 81 80 80 00 C0 04"}),
     "127.000: C0 01 | 255.000: C0 02 | 16639.000: C0 03 | 2113791.000: C0 04", 2113.791},
    {"running status, kept across meta events and SysEx",
     song(0, 500,
          {"00 90 3C 40 01 3E 40 01 FF 01 01 41 01 40 40 01 F0 01 F7 01 43 00 01 C1 05 01 06"}),
     "0.000: 90 3C 40 | 1.000: 90 3E 40 | 3.000: 90 40 40 | 4.000: F0 F7 | 5.000: 90 43 00 | "
     "6.000: C1 05 | 7.000: C1 06",
     0.007},
    {"SysEx whole, in packets, without an end, and an escape",
     song(0, 500,
          {"00 F0 03 7D 01 F7 01 F0 02 7D 01 01 F7 02 02 F7 01 F0 01 7D 01 C0 01 01 F7 02 F3 01"}),
     "0.000: F0 7D 01 F7 | 2.000: F0 7D 01 02 F7 | 4.000: F0 7D F7 | 4.000: C0 01", 0.005},
    {"tempo changes at their tick",
     song(0, 500, {"83 74 FF 51 03 03 D0 90 83 74 C0 01 00 FF 51 03 0F 42 40 83 74 C0 02"}),
     "750.000: C0 01 | 1750.000: C0 02", 1.75},
    {"format 1 merges, tempi of any track count, equal times stay in order",
     song(1, 500,
          {"00 C0 01 8A C4 00 C0 02",
           "00 C1 01 00 90 3C 40 00 80 3C 00 8A C4 00 FF 51 03 03 D0 90 81 00 C1 02"}),
     "0.000: C0 01 | 0.000: C1 01 | 0.000: 90 3C 40 | 0.000: 80 3C 00 | 172544.000: C0 02 | "
     "172608.000: C1 02",
     172.608},
    {"format 2 goes on from track to track, each at 120 bpm until it says else",
     song(2, 500, {"00 FF 51 03 03 D0 90 83 74 C0 01", "83 74 C0 02"}),
     "250.000: C0 01 | 750.000: C0 02", 0.75},
    {"SMPTE 25 frames of 40 ticks, whatever the tempo",
     song(0, 0xE728, {"00 FF 51 03 03 D0 90 83 74 C0 01"}), "500.000: C0 01", 0.5},
    {"SMPTE 30 drop-frame", song(0, 0xE364, {"97 38 C0 01"}), "1001.000: C0 01", 1.001},
    {"meta events of any type and length",
     song(0, 500, {"00 FF 03 02 41 42 01 FF 58 04 04 02 18 08 01 FF 7A 00 01 C0 01"}),
     "3.000: C0 01", 0.003},
    {"nothing after End of Track", song(0, 500, {"00 C0 01 05 FF 2F 00 00 C0 02"}), "0.000: C0 01",
     0.005},
    {"the longest track's end, silence included", song(1, 500, {"00 C0 01", "87 68 FF 01 00"}),
     "0.000: C0 01", 1.0},
    {"damage: tempo of 0", song(0, 500, {"00 FF 51 03 00 00 00 83 74 C0 01"}), "500.000: C0 01",
     0.5, "tempo that means nothing"},
    {"damage: data out of range", song(0, 500, {"00 90 BC 40 00 90 BC C0"}),
     "0.000: 90 3C 40 | 0.000: 90 3C 40", 0, "top bit"},
    {"damage: data first", song(0, 500, {"00 3C 40"}), "", 0, "belongs to no message"},
    {"damage: status no file may hold", song(1, 500, {"00 C0 01 00 F1 00", "01 C0 02"}),
     "0.000: C0 01 | 1.000: C0 02", 0.001, "track 1 holds a message that no file may hold"},
    {"damage: endless delta time after SysEx without an end",
     song(0, 500, {"00 F0 01 7D FF FF FF FF 00 C0 02"}), "0.000: F0 7D F7", 0, "never ends"},
    {"damage: length of a meta event past the end", song(0, 500, {"00 C0 01 00 FF 01 7F 41"}),
     "0.000: C0 01", 0, "breaks off"},
    {"damage: division 0", song(0, 0, {"83 60 C0 01"}), "500.000: C0 01", 0.5, "480"},
    {"damage: unknown format", song(7, 500, {"01 C0 01", "01 C1 01"}),
     "1.000: C0 01 | 1.000: C1 01", 0.001, "read as format 1"},
};

TEST(MidiFile, EveryKindOfContentIsRead) {
    for (const reading& row : readings) {
        const midi_song read = midi_file_read(row.file);
        EXPECT_EQ(read.error, "") << row.name;
        EXPECT_EQ(played(read), row.events) << row.name;
        EXPECT_NEAR(read.seconds, row.seconds, 1e-9) << row.name;
        EXPECT_EQ(read.warnings.size(), *row.warning ? 1u : 0u)
            << row.name << joined(read.warnings);
        EXPECT_NE(joined(read.warnings).find(row.warning), std::string::npos)
            << row.name << joined(read.warnings);
    }
}

TEST(MidiFile, WhatIsNoSongIsRefused) {
    const bytes whole = song(0, 500, {"00 C0 01"});
    const std::vector<std::pair<bytes, const char*>> refused{
        {{}, "MThd"},
        {{'R', 'I', 'F', 'F', 0, 0, 0, 0}, "MThd"},
        {bytes(whole.begin(), whole.begin() + 13), "breaks off in its header"},
        {bytes(whole.begin(), whole.begin() + 14), "no track"},
        {bytes(midi_file_max_bytes + 1), "8 MiB"}};
    for (const auto& [file, reason] : refused) {
        const midi_song read = midi_file_read(file);
        EXPECT_NE(read.error.find(reason), std::string::npos) << read.error;
        EXPECT_TRUE(read.events.empty()) << reason;
    }
}

TEST(MidiFile, UnknownPartsAndALongHeaderAreSkipped) {
    bytes file;
    midi_bytes::append_chunk(file, "MThd", {0, 1, 0, 1, 1, 0xF4, 9, 9, 9});
    midi_bytes::append_chunk(file, "XFIH", {1, 2, 3});
    midi_bytes::append_chunk(file, "MTrk", midi_bytes::from_hex("01 C0 01 00 FF 2F 00"));
    const midi_song read = midi_file_read(file);
    EXPECT_EQ(played(read), "1.000: C0 01");
    EXPECT_TRUE(read.warnings.empty()) << joined(read.warnings);
}

TEST(MidiFile, ManyDamagedTracksGiveFewWarnings) {
    const midi_song read = midi_file_read(song(1, 500, std::vector<std::string>(100, "00 3C")));
    EXPECT_LT(read.warnings.size(), 10u);
    EXPECT_NE(joined(read.warnings).find("more damage"), std::string::npos);
}

/// A song with every kind of content, to be damaged.
bytes rich_song() {
    return song(1, 480,
                {"00 FF 51 03 07 A1 20 83 60 FF 51 03 0F 42 40 00 FF 58 04 04 02 18 08",
                 "00 90 3C 40 83 60 3C 00 00 F0 03 7D 01 F7 00 C0 05 81 00 E0 00 40 00 B0 40 7F",
                 "10 F0 02 7D 01 01 F7 02 02 F7 00 91 30 7F 20 81 30 00"});
}

TEST(MidiFile, ATruncatedFileGivesItsBeginningAndAWarning) {
    const bytes whole = rich_song();
    const auto all = midi_file_read(whole).events.size();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const midi_song read = midi_file_read(std::span{whole}.first(length));
        EXPECT_TRUE(!read.error.empty() || !read.warnings.empty()) << length << " bytes";
        EXPECT_LE(read.events.size(), all) << length << " bytes";
    }
    const midi_song without_last_byte = midi_file_read(std::span{whole}.first(whole.size() - 1));
    EXPECT_EQ(without_last_byte.events.size(), all);
}

TEST(MidiFile, DamageNeitherCrashesNorSwells) {
    const bytes whole = rich_song();
    std::minstd_rand random{1};
    for (int round = 0; round < 20000; ++round) {
        bytes damaged = whole;
        for (unsigned i = 0; i <= random() % 4; ++i)
            damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
        const midi_song read = midi_file_read(damaged);
        ASSERT_LE(read.bytes.size(), 2 * damaged.size()) << "round " << round;
        ASSERT_LE(read.events.size(), damaged.size()) << "round " << round;
        ASSERT_LE(read.warnings.size(), 9u) << "round " << round;
        ASSERT_TRUE(std::is_sorted(
            read.events.begin(), read.events.end(),
            [](const midi_event& a, const midi_event& b) { return a.seconds < b.seconds; }))
            << "round " << round;
    }
}

} // namespace
