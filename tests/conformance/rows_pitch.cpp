/// The pitch of every key at every rate, against the closed form: a table holds one period in a
/// whole number of samples at eight times the rate, truncated.

#include "conformance/instrument.h"
#include "conformance/rates.h"
#include "probe/signal.h"

#include <cmath>

namespace {

using Pitch = Row;

constexpr int first_note = 24;
constexpr int nb_bass_keys = 12;
constexpr int nb_manual_keys = 49;
constexpr double bound_cents = 0.1;

/// Tuned frequencies are within this of equal temperament.
constexpr double tuning = 12e-6;

double tempered_hz(int oscillator) { return 440 * std::exp2((oscillator - 33) / 12.0); }

/// The pitch of the table whose length is nearest in sound to `hz`, of those that the tuning
/// allows.
double table_hz(int oscillator, int base_rate, double hz) {
    const double table_rate = 8.0 * base_rate;
    double nearest = 0;
    for (const double bend : {1 - tuning, 1 + tuning}) {
        const double pitch = table_rate / std::trunc(table_rate / (tempered_hz(oscillator) * bend));
        if (std::fabs(pitch - hz) < std::fabs(nearest - hz))
            nearest = pitch;
    }
    return nearest;
}

/// Strikes the key, lets the attack pass, and measures the lowest partial of half a second.
double pitch_of(instrument& playing, int note, int rate, double guess_hz) {
    const long settling = rate / 10;
    playing.render({note_on(0, note)}, settling);
    const recording sound = playing.render({}, rate / 2);
    playing.running.expect(peak(sound.right) > 1e-3, "note " + std::to_string(note) + " is silent");
    playing.render({note_off(0, note)}, settling);
    return frequency(sound.right, rate, guess_hz);
}

void expect_pitch(instrument& playing, int note, int oscillator, const rate_case& tuned) {
    const double hz = pitch_of(playing, note, tuned.rate, tempered_hz(oscillator));
    const double wanted = table_hz(oscillator, tuned.base_rate, hz);
    playing.running.expect(std::fabs(cents(hz, wanted)) <= bound_cents,
                           "note " + std::to_string(note) + " has " + std::to_string(hz)
                               + " Hz, wanted " + std::to_string(wanted));
}

/// The lowest octave of the manual sounds from the octave above on.
TEST_F(Pitch, ManualFollowsTheTables) {
    for (const rate_case& tuned : supported_rates) {
        instrument playing(
            running, {.rate = tuned.rate,
                      .blocks = {512},
                      .parameters = {{flute, 0.0f}, {bright, 0.0f}, {brass, 0.0f}, {bass, 0.0f}}});
        for (int key = 0; key < nb_manual_keys; ++key)
            expect_pitch(playing, first_note + key, key < nb_bass_keys ? key + nb_bass_keys : key,
                         tuned);
    }
}

TEST_F(Pitch, BassFollowsTheTables) {
    for (const rate_case& tuned : supported_rates) {
        instrument playing(running,
                           {.rate = tuned.rate,
                            .blocks = {512},
                            .parameters = {{bass_chords, 0.0f}, {split, split_bass_right}}});
        for (int key = 0; key < nb_bass_keys; ++key)
            expect_pitch(playing, first_note + key, key, tuned);
    }
}

/// The nearest of the three banks, read at the true ratio: no worse in tune than the coarsest.
TEST_F(Pitch, OtherRatesAreInTune) {
    for (const int rate : {8000, 11025, 16000, 32000, 37800, 64000, 100001, 384000}) {
        instrument playing(running, {.rate = rate, .blocks = {512}});
        for (const int note : {36, 48, 57}) {
            const double hz = pitch_of(playing, note, rate, tempered_hz(note - first_note));
            running.expect(std::fabs(cents(hz, tempered_hz(note - first_note))) < 10,
                           "note " + std::to_string(note) + " has " + std::to_string(hz) + " Hz");
        }
    }
}

/// Notes below the manual and above it are nobody's.
TEST_F(Pitch, NotesOutsideAreSilent) {
    instrument playing(running, set_up{});
    score notes;
    for (int note = 0; note < 128; ++note)
        if (note < first_note || note >= first_note + nb_manual_keys)
            notes.push_back(note_on(0, note));
    const recording sound = playing.render(notes, 4800);
    running.expect(peak(sound.right) == 0, "a note outside the manual sounds");
}

} // namespace
