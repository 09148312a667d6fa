/// What a second of sound costs with other instruments that musicians use, each with the program
/// that it comes with; second_of_sound is this one's.

#include "plugin/plugin.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <exception>
#include <stdexcept>

namespace {

constexpr int rate_hz = 48000;
constexpr int block_frames = 64;
constexpr double silence_db = -60; ///< a key alone is some 30 dB louder

/// Sends note-ons, or note-offs to all keys but one, spread over four octaves. All in one block: of
/// keys that follow each other block by block, one of the peers sounds no more than 21.
void play(plugin& instrument, int nb_keys, bool on, int but = -1) {
    event_list keys;
    for (int i = 0; i < nb_keys; ++i) {
        const int note = 36 + (nb_keys == 49 ? i : 3 * i);
        if (i != but)
            keys.add(message_make(on ? message_note_on : message_note_off, 0,
                                  static_cast<std::size_t>(note), 100),
                     0);
    }
    instrument.send(keys);
}

constexpr int nb_blocks(int nb_milliseconds) {
    return rate_hz / 1000 * nb_milliseconds / block_frames;
}

void render(plugin& instrument, int nb_milliseconds) {
    for (int i = 0; i < nb_blocks(nb_milliseconds); ++i)
        instrument.process();
}

/// Renders, and returns the first output's level in dB of full scale.
double render_level(plugin& instrument, int nb_milliseconds) {
    double power = 0;
    for (int i = 0; i < nb_blocks(nb_milliseconds); ++i) {
        instrument.process();
        for (const float sample : instrument.output(0))
            power += double{sample} * double{sample} / block_frames;
    }
    return 10 * std::log10(power / nb_blocks(nb_milliseconds));
}

/// How many keys sound when all are held: each does that is still heard when the others are let go,
/// while one without a voice leaves silence.
int count_sounding(plugin& instrument, int nb_keys) {
    int nb_sounding = 0;
    for (int kept = -1; kept < nb_keys; ++kept) {
        play(instrument, nb_keys, true);
        render(instrument, 100);
        play(instrument, nb_keys, false, kept);
        render(instrument, 2000); // the room falls silent
        const bool sounds = render_level(instrument, 100) > silence_db;
        if (sounds && kept == -1)
            throw std::runtime_error{"sounds on when all keys are let go"};
        nb_sounding += sounds;
        play(instrument, nb_keys, false);
    }
    return nb_sounding;
}

/// An iteration is a second of sound. The process's CPU time, for a peer may have threads of its
/// own.
void second_of_peer(benchmark::State& state, const char* bundle) {
    const auto nb_keys = static_cast<int>(state.range(0));
    try {
        const auto p_loaded = plugin_load(bundle);
        plugin& instrument = *p_loaded;
        instrument.prepare(rate_hz, block_frames);
        instrument.start();
        render(instrument, 1000); // one of the peers is deaf in its first block
        play(instrument, nb_keys, true);
        render(instrument, 1000);
        for (auto _ : state)
            render(instrument, 1000);
        state.counters["dB"] = render_level(instrument, 1000);
        play(instrument, nb_keys, false);
        render(instrument, 1000);
        state.counters["keys_sounding"] = count_sounding(instrument, nb_keys);
    } catch (const std::exception& failed) {
        state.SkipWithError(failed.what());
    }
}

void with_keys(benchmark::internal::Benchmark* measured) {
    measured->ArgName("keys")->Arg(0)->Arg(10)->Arg(49)->Iterations(100);
    measured->MeasureProcessCPUTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(second_of_peer, setBfree, "/usr/lib/lv2/b_synth")->Apply(with_keys);
BENCHMARK_CAPTURE(second_of_peer, Yoshimi, "/usr/lib/lv2/yoshimi.lv2")->Apply(with_keys);

} // namespace
