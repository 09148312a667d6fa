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

/// What stands still while nothing sounds is where it would be: a key held until shortly before
/// changes nothing, once the filters have forgotten it.
TEST_F(Onset, ARestIsNotHeard) {
    constexpr long second = 48000;
    const auto play_after = [&](long released) {
        instrument playing(running, {.blocks = {512}, .parameters = {{vibrato, 1}, {mellow, 0}}});
        playing.render(
            {note_on(0, 60), note_on(0, 28), note_off(released, 60), note_off(released, 28)},
            66 * second);
        for (const VstInt32 index : {mellow, contour})
            playing.set(index, 0.9f);
        return playing.render({note_on(3, 60), note_on(40, 28)}, second / 2).right;
    };
    const double db = difference_db(play_after(100), play_after(60 * second));
    running.expect(db < -90, "what follows a rest is " + std::to_string(db) + " dB off");
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

} // namespace
