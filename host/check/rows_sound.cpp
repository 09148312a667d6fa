/// Numbers that are no sound.

#include "check/rows.h"
#include "check/subject.h"

#include <xmmintrin.h>

namespace {

constexpr unsigned usual_register = 0x1F80; ///< as processes start

/// Plays a chord and its decay, each block with the processor as it was when the process started.
void play_phrase(trial& running, subject& played) {
    constexpr int block = 256;
    played.prepare(usual_rate, block);
    require_outputs(running, played);
    constexpr int notes[]{36, 48, 55, 60, 64, 79};
    const bool is_instrument = played.tested().is_instrument();
    for (const bool down : {true, false}) {
        for (const int note : notes)
            if (is_instrument)
                down ? played.strike(note) : played.let_go(note);
        for (int done = 0; done < (down ? 1 : 15) * usual_rate; done += block) {
            _mm_setcsr(usual_register);
            played.play(block);
        }
    }
    _mm_setcsr(usual_register);
}

void finite(trial& running) {
    subject played(running);
    play_phrase(running, played);
    played.expect_finite();
}

void normal(trial& running) {
    subject played(running);
    play_phrase(running, played);
    played.expect_normal();
}

void heard(trial& running) {
    running.prefer(is_heard(running), "middle C is not heard when it is struck on channel 1");
}

} // namespace

table sound_rows() {
    return {{"sound/note is heard", demand::interface, heard},
            {"sound/finite", demand::interface, finite},
            {"sound/no subnormal numbers", demand::hosts, normal}};
}
