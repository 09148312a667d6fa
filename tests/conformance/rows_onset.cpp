/// Silence, the frame at which it ends, and its return.

#include "conformance/instrument.h"
#include "probe/signal.h"

#include <algorithm>
#include <cmath>
#include <xmmintrin.h>

namespace {

using Onset = Row;

TEST_F(Onset, NothingSoundsBeforeTheFirstNote) {
    for (const int rate : {22050, 44100, 48000, 192000, 31415}) {
        instrument playing(running, {.rate = rate, .blocks = {512, 1, 100}});
        const recording sound = playing.render({}, rate);
        for (const signal_span output : {signal_span(sound.right), signal_span(sound.left)}) {
            running.frame = static_cast<long>(first_sound(output));
            running.expect(first_sound(output) == output.size(), "it sounds without a note");
        }
    }
}

constexpr unsigned usual = 0x1F80; ///< every exception masked, rounding to nearest, denormals on

/// Silence after a note is exact: what decays, by 26 dB a second in the slowest filter, passes the
/// smallest normal number, at -759 dB, after 30 s and is 0 from there on.
TEST_F(Onset, WhatDecaysEndsInZero) {
    constexpr std::size_t second = 48000;
    _mm_setcsr(usual);
    instrument playing(running, {.rate = second, .blocks = {512}});
    const recording sound = playing.render(
        {note_on(0, 60), note_on(0, 26), note_off(4800, 60), note_off(4800, 26)}, 40 * second);
    _mm_setcsr(usual);
    for (const signal_span output : {signal_span(sound.right), signal_span(sound.left)}) {
        const auto nb_denormals = std::ranges::count_if(
            output, [](float sample) { return std::fpclassify(sample) == FP_SUBNORMAL; });
        running.expect(nb_denormals == 0, std::to_string(nb_denormals) + " samples are denormal");
        running.expect(peak(output.last(second)) == 0, "the last second is not silent");
    }
}

constexpr int block_lengths[]{1,   2,   3,   7,   16,  31,  32,  33,   63,   64,   65,
                              100, 127, 128, 129, 255, 441, 512, 1000, 1024, 4096, 8192};
constexpr long onset_frames[]{0, 1, 37, 63, 64, 65, 100, 511, 1000, 5000};

struct onset_case {
    const char* name;
    int note;
    float chords;
    long delay; ///< frames from the note's to the first that is not silent
};

/// The manual's attack begins at 0; the bass has none.
constexpr onset_case cases[]{{"manual", 60, 0, 1}, {"bass", 30, 0, 0}, {"both", 30, 1, 0}};

TEST_F(Onset, NotesSoundFromTheirFrameOn) {
    for (const auto& [name, note, chords, delay] : cases)
        for (const int block : block_lengths)
            for (const long frame : onset_frames) {
                running.doing = std::string(name) + " struck at frame " + std::to_string(frame);
                instrument playing(running,
                                   {.blocks = {block}, .parameters = {{bass_chords, chords}}});
                const recording sound = playing.render({note_on(frame, note)}, frame + 64);
                running.block = block;
                running.frame = static_cast<long>(first_sound(sound.right));
                running.expect(running.frame == frame + delay,
                               "it sounds from another frame on than "
                                   + std::to_string(frame + delay));
            }
}

/// Hands the messages over in one list, their frames as offsets, with the bass alone on its notes.
recording play_list(trial& running, const score& list) {
    instrument playing(running, {.blocks = {512}, .parameters = {{bass_chords, 0.0f}}});
    event_list events;
    for (const midi& event : list)
        events.add_midi(message_of(event), static_cast<int>(event.frame));
    playing.send(events);
    return playing.render({}, 4800);
}

struct offset_case {
    VstInt32 offset;
    long frame; ///< the one it is moved to
};

/// Offsets outside the block of 512 belong to its first or last frame.
constexpr offset_case offsets[]{{-1, 0},    {-100000, 0}, {-2147483647 - 1, 0}, {511, 511},
                                {512, 511}, {5000, 511},  {2147483647, 511}};

TEST_F(Onset, OffsetsOutsideTheBlockAreMovedIntoIt) {
    for (const auto& [offset, frame] : offsets) {
        const recording sound = play_list(running, {note_on(offset, 30)});
        running.frame = static_cast<long>(first_sound(sound.right));
        running.expect(running.frame == frame,
                       "offset " + std::to_string(offset) + " sounds from frame "
                           + std::to_string(running.frame) + ", wanted " + std::to_string(frame));
    }
}

/// Within a piece of 64 frames, over pieces, and with offsets outside the block.
const score decreasing_lists[]{{note_on(40, 60), note_on(10, 64)},
                               {note_on(300, 60), note_on(100, 64)},
                               {note_on(300, 30), note_off(100, 30)},
                               {note_on(64, 60), note_on(63, 64), note_on(200, 67), note_on(0, 72)},
                               {note_on(511, 60), note_on(0, 26)},
                               {note_on(5000, 60), note_on(-5, 30)}};

/// What comes later in a list waits for what came before, and is not lost.
TEST_F(Onset, OffsetsThatDecreaseWait) {
    for (const score& list : decreasing_lists) {
        score moved = list;
        for (std::size_t i = 1; i < moved.size(); ++i)
            moved[i].frame = std::max(moved[i].frame, moved[i - 1].frame);
        const recording sound = play_list(running, list);
        const recording wanted = play_list(running, moved);
        const std::string offset = std::to_string(list.back().frame);
        running.frame = static_cast<long>(worst_index(sound.right, wanted.right));
        running.expect(sound.right == wanted.right,
                       "the event of offset " + offset + " does not act with the one before it");
        moved.pop_back();
        running.expect(wanted.right != play_list(running, moved).right,
                       "the event of offset " + offset + " is lost");
    }
}

} // namespace
