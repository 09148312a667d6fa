#include "render/score.h"

#include "tests/host/midi_bytes.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <numeric>
#include <string>

namespace {

/// At 500 ticks a quarter and a rate of 1000 Hz, ticks are frames.
constexpr int rate_hz = 1000;

std::string arranged(const char* track, const score_options& options) {
    const midi_song song = midi_file_read(midi_bytes::song(0, 500, {track}));
    const score music = score_arrange(song, options, rate_hz);
    std::string text;
    for (const score_event& event : music.events) {
        text += (text.empty() ? "" : " | ") + std::to_string(event.frame) + ":";
        for (const std::uint8_t byte : score_message(music, event)) {
            std::array<char, 8> hex{};
            std::snprintf(hex.data(), hex.size(), " %02X", byte);
            text += hex.data();
        }
    }
    const auto& notes = music.notes_before_transposition;
    return text + " | end " + std::to_string(music.nb_frames) + ", notes "
           + std::to_string(std::accumulate(notes.begin(), notes.end(), std::uint64_t{0}))
           + (music.nb_unwished ? ", unwished " + std::to_string(music.nb_unwished) : "");
}

TEST(Score, ArrangesWhatIsWished) {
    struct arrangement {
        const char* name;
        const char* track;
        score_options options;
        const char* expected;
    };
    const arrangement rows[] = {
        {"channel 10 is left out, SysEx belongs to no channel",
         "00 99 3C 40 00 F0 03 7D 01 F7 01 99 3C 00 00 90 3C 40 01 80 3C 00",
         {},
         "0: F0 7D 01 F7 | 1: 90 3C 40 | 2: 80 3C 00 | end 2, notes 1, unwished 1"},
        {"only chosen channels",
         "00 B0 07 01 00 B1 07 02 00 B2 07 03",
         {.channels = 2},
         "0: B1 07 02 | end 0, notes 0"},
        {"keys move, other data stays",
         "00 90 3C 40 00 A0 3C 11 00 B0 07 3C 01 80 3C 40",
         {.transposition = -12},
         "0: 90 30 40 | 0: A0 30 11 | 0: B0 07 3C | 1: 80 30 40 | end 1, notes 1"},
        {"notes moved out of range are left out",
         "00 90 7F 40 00 90 7E 40 01 80 7F 40 00 80 7E 40",
         {.transposition = 1},
         "0: 90 7F 40 | 1: 80 7F 40 | end 1, notes 2"},
        {"held notes and the pedal end with the song",
         "00 90 3C 40 00 91 3E 40 00 B1 40 7F 00 90 40 40 05 90 40 00 05 C0 00",
         {},
         "0: 90 3C 40 | 0: 91 3E 40 | 0: B1 40 7F | 0: 90 40 40 | 5: 90 40 00 | 10: C0 00 | "
         "10: 80 3C 40 | 10: 81 3E 40 | 10: B1 40 00 | end 10, notes 3"},
        {"a note struck twice is released twice",
         "00 90 3C 40 01 90 3C 40",
         {},
         "0: 90 3C 40 | 1: 90 3C 40 | 1: 80 3C 40 | 1: 80 3C 40 | end 1, notes 2"},
        {"a length cuts the song and releases what sounds",
         "00 90 3C 40 64 90 3E 40 64 80 3C 40 00 80 3E 40",
         {.max_seconds = 0.1},
         "0: 90 3C 40 | 100: 80 3C 40 | end 100, notes 1"},
        {"a length past the end changes nothing",
         "00 90 3C 40 05 80 3C 40",
         {.max_seconds = 9},
         "0: 90 3C 40 | 5: 80 3C 40 | end 5, notes 1"},
    };
    for (const arrangement& row : rows)
        EXPECT_EQ(arranged(row.track, row.options), row.expected) << row.name;
}

} // namespace
