/// Silence, and the frame at which it ends.

#include "conformance/instrument.h"
#include "conformance/tables.h"
#include "probe/signal.h"

#include <algorithm>

namespace {

void silence_before_the_first_note(trial& running) {
    for (const int rate : {22050, 44100, 48000, 192000, 31415}) {
        instrument playing(running, {.rate = rate, .blocks = {512, 1, 100}});
        const recording sound = playing.render({}, rate);
        for (const signal_span output : {signal_span(sound.right), signal_span(sound.left)}) {
            running.frame = static_cast<long>(first_sound(output));
            running.expect(first_sound(output) == output.size(), "it sounds without a note");
        }
    }
}

constexpr int block_lengths[]{1,   2,   3,   7,   16,  31,  32,  33,   63,   64,   65,
                              100, 127, 128, 129, 255, 441, 512, 1000, 1024, 4096, 8192};
constexpr long onset_frames[]{0, 1, 37, 63, 64, 65, 100, 511, 1000, 5000};

struct onset_case {
    const char* name;
    int note;
    float bass_chords;
    long delay; ///< frames from the note's to the first that is not silent
};

/// The manual's attack begins at 0; the bass has none.
constexpr onset_case cases[]{
    {"onset/manual", 60, 0, 1}, {"onset/bass", 30, 0, 0}, {"onset/bass and manual", 30, 1, 0}};

void onset(trial& running, const onset_case& wanted) {
    for (const int block : block_lengths)
        for (const long frame : onset_frames) {
            instrument playing(
                running, {.blocks = {block}, .parameters = {{bass_chords, wanted.bass_chords}}});
            const recording sound = playing.render({note_on(frame, wanted.note)}, frame + 64);
            running.frame = static_cast<long>(first_sound(sound.right));
            running.block = block;
            running.expect(running.frame == frame + wanted.delay,
                           "the note of frame " + std::to_string(frame) + " sounds from frame "
                               + std::to_string(running.frame) + ", wanted "
                               + std::to_string(frame + wanted.delay));
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

void offsets_outside_the_block(trial& running) {
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
void offsets_that_decrease(trial& running) {
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

table onset_rows() {
    table rows{{"onset/silence before the first note", silence_before_the_first_note},
               {"onset/offsets outside the block", offsets_outside_the_block},
               {"onset/offsets that decrease", offsets_that_decrease}};
    for (const onset_case& wanted : cases)
        rows.push_back({wanted.name, [&wanted](trial& running) { onset(running, wanted); }});
    return rows;
}
