/// The bass: one key at a time, and its octave as chords on the manual.

#include "conformance/instrument.h"
#include "probe/signal.h"

#include <cmath>

namespace {

using Bass = Row;

constexpr int rate = 48000;
constexpr int no_note = 0;

struct mono_case {
    const char* name;
    score played;
    int wanted; ///< the note that sounds from the second second on
};

const mono_case cases[]{
    {"a lower key takes over", {note_on(0, 31), note_on(9000, 26)}, 26},
    {"a higher key waits", {note_on(0, 26), note_on(9000, 31)}, 26},
    {"a higher key follows", {note_on(0, 26), note_on(9000, 31), note_off(20000, 26)}, 31},
    {"a waiting key is released", {note_on(0, 26), note_on(9000, 31), note_off(20000, 31)}, 26},
    {"both keys are released",
     {note_on(0, 26), note_on(9000, 31), note_off(20000, 31), note_off(30000, 26)},
     no_note},
    {"the lowest of a chord", {note_on(0, 35), note_on(0, 28), note_on(0, 32)}, 28},
    {"a released key is silent", {note_on(0, 26), note_off(20000, 26)}, no_note},
    {"struck again", {note_on(0, 26), note_on(9000, 26), note_on(12000, 26)}, 26},
    {"released twice", {note_on(0, 26), note_off(9000, 26), note_off(9001, 26)}, no_note},
    {"released in the same frame", {note_on(500, 26), note_off(500, 26)}, no_note}};

const set_up bass_alone{.rate = rate,
                        .parameters = {{bass_chords, 0.0f}, {split, split_bass_right}}};

TEST_F(Bass, TheLowestKeySoundsAlone) {
    for (const auto& [name, played, wanted] : cases) {
        running.doing = name;
        instrument playing(running, bass_alone);
        const recording sound = playing.render(played, 2 * rate);
        const signal_span end = signal_span(sound.right).last(rate);
        running.expect(wanted != no_note || peak(end) <= 1e-5 * peak(sound.right),
                       "a released key sounds");
        for (int note = 24; wanted != no_note && note < 36; ++note) {
            const double hz = 440 * std::exp2((note - 57) / 12.0);
            const double db = to_db(std::abs(partial(end, rate, hz)) / peak(end));
            running.expect((db > -20) == (note == wanted), "note " + std::to_string(note) + " has "
                                                               + std::to_string(db)
                                                               + " dB of the peak");
        }
    }
}

/// A key that takes over does so within its own piece of 64 frames and the releasing key's 3 ms.
TEST_F(Bass, ALowerKeyTakesOverInTime) {
    constexpr long taken = 20000;
    instrument playing(running, bass_alone);
    instrument lower(running, bass_alone);
    const recording sound = playing.render({note_on(0, 31), note_on(taken, 26)}, 2 * taken);
    const recording wanted = lower.render({note_on(0, 26)}, 2 * taken);
    // The oscillators run on whether heard or not, so the sounds meet once the filter has settled.
    const auto settled = static_cast<std::size_t>(taken + 64 + rate / 10);
    const double db = difference_db(signal_span(sound.right).subspan(settled),
                                    signal_span(wanted.right).subspan(settled));
    running.expect(db < -75, "the lower key is " + std::to_string(db) + " dB off");
}

TEST_F(Bass, SoundsOnTheManualAsChords) {
    for (int note = 24; note < 36; ++note)
        for (const float value : {0.0f, std::nextafter(0.5f, 0.0f), 0.5f, 1.0f}) {
            instrument playing(running,
                               {.parameters = {{bass_chords, value}, {split, split_bass_right}}});
            const recording sound = playing.render({note_on(0, note)}, 4800);
            running.expect(peak(sound.right) > 0, "the bass is silent");
            running.expect((peak(sound.left) > 0) == (value >= 0.5f),
                           "note " + std::to_string(note) + " on the manual at chords "
                               + std::to_string(value));
        }
}

TEST_F(Bass, IsNotOnTheManual) {
    for (int note = 36; note <= 72; ++note) {
        instrument playing(running, bass_alone);
        const recording sound = playing.render({note_on(0, note)}, 4800);
        running.expect(peak(sound.right) == 0 && peak(sound.left) > 0,
                       "note " + std::to_string(note) + " sounds the bass");
    }
}

} // namespace
