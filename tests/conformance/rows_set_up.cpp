/// In whatever order a host sets it up, the instrument plays the same.

#include "conformance/instrument.h"
#include "conformance/tables.h"
#include "probe/signal.h"

#include <cmath>
#include <functional>
#include <iterator>
#include <limits>

namespace {

constexpr long nb_frames = 24000;
const score played{note_on(10, 60), note_on(500, 28), note_off(9000, 60)};

void set_rate(instrument& playing, float rate) {
    playing.ask(effSetSampleRate, 0, 0, nullptr, rate);
}

void set_block(instrument& playing, VstIntPtr nb) { playing.ask(effSetBlockSize, 0, nb); }

/// A block is asked for before its time.
void expect_silence(instrument& playing) {
    recording sound;
    playing.process(sound, 512);
    playing.running.expect(peak(sound.right) == 0 && peak(sound.left) == 0 && is_finite(sound.right)
                               && is_finite(sound.left),
                           "it is not silent before it is set up");
}

struct order_case {
    const char* name;
    std::function<void(instrument&)> set_up;
};

const order_case orders[]{
    {"set_up/block before rate",
     [](instrument& playing) {
         set_block(playing, 64);
         set_rate(playing, 48000);
     }},
    {"set_up/no block", [](instrument& playing) { set_rate(playing, 48000); }},
    {"set_up/process before either",
     [](instrument& playing) {
         expect_silence(playing);
         set_rate(playing, 48000);
         set_block(playing, 64);
     }},
    {"set_up/process between",
     [](instrument& playing) {
         set_block(playing, 64);
         expect_silence(playing);
         set_rate(playing, 48000);
     }},
    {"set_up/rate 0 first",
     [](instrument& playing) {
         set_rate(playing, 0);
         expect_silence(playing);
         set_rate(playing, 48000);
     }},
    {"set_up/odd rates and sizes",
     [](instrument& playing) {
         using limits = std::numeric_limits<float>;
         set_rate(playing, 48000);
         set_block(playing, 64);
         for (const float rate :
              {0.0f, -1.0f, -48000.0f, 999.9f, 1000001.0f, 2147483648.0f, limits::quiet_NaN(),
               limits::infinity(), -limits::infinity(), limits::denorm_min(), limits::max()})
             set_rate(playing, rate);
         for (const VstIntPtr size : {0, -1, 2147483647, -2147483647 - 1})
             set_block(playing, size);
     }},
    {"set_up/rate again",
     [](instrument& playing) {
         set_rate(playing, 48000);
         set_block(playing, 64);
         set_rate(playing, 48000);
     }},
    {"set_up/rate with a fraction", [](instrument& playing) { set_rate(playing, 48000.7f); }},
};

void order(trial& running, const order_case& judged) {
    instrument usual(running, set_up{});
    const recording wanted = usual.render(played, nb_frames);
    instrument playing(running);
    running.rate = 48000;
    judged.set_up(playing);
    const recording got = playing.render(played, nb_frames);
    running.frame = static_cast<long>(worst_index(got.right, wanted.right));
    running.expect(got.right == wanted.right && got.left == wanted.left, "it plays otherwise");
}

/// Suspending leaves everything as it is, held notes too, and resuming only asks for MIDI.
void suspend_and_resume(trial& running) {
    constexpr int nb_times = 1000;
    const score held(played.begin(), played.end() - 1);
    instrument usual(running, set_up{});
    instrument suspended(running, set_up{});
    for (instrument* playing : {&usual, &suspended})
        playing->render(held, nb_frames / 2);
    suspended.its_host.calls.clear();
    for (int i = 0; i < nb_times; ++i) {
        suspended.ask(effMainsChanged, 0, 0);
        suspended.ask(effMainsChanged, 0, 1);
    }
    running.expect(std::ssize(suspended.its_host.calls) == nb_times
                       && suspended.its_host.nb_calls(__audioMasterWantMidiDeprecated) == nb_times,
                   "it does not ask for MIDI once a resume, and for nothing else");
    const recording wanted = usual.render({played.back()}, nb_frames);
    const recording got = suspended.render({played.back()}, nb_frames);
    running.frame = static_cast<long>(worst_index(got.right, wanted.right));
    running.expect(got.right == wanted.right && got.left == wanted.left, "it plays otherwise");
}

/// What is struck while nothing is set up sounds once it is.
void notes_before_the_rate(trial& running) {
    instrument playing(running);
    playing.send(note_on(0, 60));
    expect_silence(playing);
    playing.prepare({});
    running.expect(peak(playing.render({}, 4800).right) > 1e-3, "the waiting note is lost");
}

/// Notes held over a change of rate or size sound on, finite, at their pitch.
void changes_while_it_sounds(trial& running) {
    instrument playing(running, set_up{});
    playing.render({note_on(0, 57), note_on(0, 26)}, 1000);
    for (const int rate : {96000, 22050, 1000, 44100, 12345, 1000000, 192000, 48000}) {
        running.rate = rate;
        set_rate(playing, static_cast<float>(rate));
        set_block(playing, 17);
        playing.render({}, rate / 2);
        const recording sound = playing.render({}, rate / 4);
        running.expect(is_finite(sound.right), "it is not finite");
        running.expect(std::abs(partial(sound.right, rate, 440)) > 1e-3, "its note is lost");
        const double hz = frequency(sound.right, rate, 440);
        running.expect(std::fabs(cents(hz, 440)) < 10, "its pitch is " + std::to_string(hz));
    }
}

} // namespace

table set_up_rows() {
    table rows{{"set_up/suspend and resume 1000 x", suspend_and_resume},
               {"set_up/notes before the rate", notes_before_the_rate},
               {"set_up/changes while it sounds", changes_while_it_sounds}};
    for (const order_case& judged : orders)
        rows.push_back({judged.name, [&judged](trial& running) { order(running, judged); }});
    return rows;
}
