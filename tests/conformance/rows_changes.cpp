/// Setting it up, and setting it up anew while it plays.

#include "conformance/instrument.h"
#include "probe/signal.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <numeric>
#include <random>

namespace {

using Changes = Row;

constexpr long nb_frames = 24000;
const score played{note_on(10, 60), note_on(500, 28), note_off(9000, 60)};

void set_rate(instrument& playing, float rate) {
    playing.ask(effSetSampleRate, 0, 0, nullptr, rate);
}

void set_block(instrument& playing, VstIntPtr nb) { playing.ask(effSetBlockSize, 0, nb); }

/// What a host repeats and what is no rate.
constexpr float idle_rates[]{48000,
                             48000.7f,
                             0,
                             -48000,
                             999.9f,
                             1000001,
                             1e30f,
                             std::numeric_limits<float>::quiet_NaN(),
                             std::numeric_limits<float>::infinity()};

/// A block is asked for before its time.
void expect_silence(instrument& playing) {
    recording sound;
    playing.process(sound, 512);
    playing.running.expect(peak(sound.right) == 0 && peak(sound.left) == 0 && is_finite(sound.right)
                               && is_finite(sound.left),
                           "it is not silent before it is set up");
}

/// Suspending leaves everything as it is, held notes too, and so does the rate that is set already
/// or is none; resuming only asks for MIDI.
TEST_F(Changes, SuspendingAndResumingDoNothing) {
    constexpr int nb_times = 1000;
    const score held(played.begin(), played.end() - 1);
    instrument usual(running, set_up{});
    instrument suspended(running);
    for (const float rate : idle_rates)
        set_rate(suspended, rate);
    suspended.prepare({});
    for (instrument* playing : {&usual, &suspended})
        playing->render(held, nb_frames / 2);
    suspended.its_host.calls.clear();
    for (int i = 0; i < nb_times; ++i) {
        suspended.ask(effMainsChanged, 0, 0);
        set_rate(suspended, idle_rates[static_cast<std::size_t>(i) % std::size(idle_rates)]);
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

/// A host restores what it saved, and sets up the rest, in whatever order it likes.
TEST_F(Changes, StatesAreRestoredInAnyOrder) {
    constexpr float state[nb_parameters]{0.2f, 1, 0.5f, 0.9f, 0.7f, 0.6f, 0.3f, 0.8f, 0.4f, 0.5f};
    std::vector<VstInt32> order(nb_parameters + 3);
    std::iota(order.begin(), order.end(), 0);
    std::mt19937 random(running.seed);
    recording wanted;
    for (int i = 0; i < 20; ++i, std::ranges::shuffle(order, random)) {
        running.doing = "order " + std::to_string(i);
        instrument playing(running);
        for (const VstInt32 step : order)
            if (step < nb_parameters)
                playing.set(step, state[step]);
            else if (step == nb_parameters)
                set_rate(playing, 48000);
            else if (step == nb_parameters + 1)
                set_block(playing, 64);
            else
                playing.ask(effMainsChanged, 0, 1);
        const recording got = playing.render(played, nb_frames);
        if (i == 0)
            wanted = got;
        running.frame = static_cast<long>(worst_index(got.right, wanted.right));
        running.expect(got.right == wanted.right && got.left == wanted.left, "it plays otherwise");
        for (VstInt32 index = 0; index < nb_parameters; ++index)
            running.expect(playing.get(index) == state[index],
                           "parameter " + std::to_string(index) + " is another");
    }
}

/// What is struck while nothing is set up sounds once it is.
TEST_F(Changes, NotesBeforeTheRateWaitForIt) {
    instrument playing(running);
    playing.send(note_on(0, 60));
    expect_silence(playing);
    playing.prepare({});
    running.expect(peak(playing.render({}, 4800).right) > 1e-3, "the waiting note is lost");
}

/// Notes held over a change of rate or size sound on, finite, at their pitch.
TEST_F(Changes, HeldNotesStayInTune) {
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
