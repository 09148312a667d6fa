/// What sound costs: CPU time a second of sound, and the most expensive block.

#include "bench/instrument.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <memory>
#include <vector>

namespace {

void name_form(benchmark::State& state, form built) {
    state.SetLabel(built == fast ? "fast" : "plain");
}

/// An iteration is a second of sound: the time is milliseconds a second.
void second_of_sound(benchmark::State& state) {
    const auto built = static_cast<form>(state.range(2));
    instrument played(built, static_cast<int>(state.range(1)));
    played.play(static_cast<int>(state.range(0)), true);
    played.render_second();
    for (auto _ : state)
        played.render_second();
    name_form(state, built);
}

BENCHMARK(second_of_sound)
    ->ArgNames({"keys", "block", "plain"})
    ->ArgsProduct({{0, 1, 10, 49}, {64, 128, 256}, {fast, plain}})
    ->ArgsProduct({{49}, {100, 441}, {fast, plain}})
    ->Unit(benchmark::kMillisecond);

/// The same without a key, a second after ten were let go.
void second_after_playing(benchmark::State& state) {
    const auto built = static_cast<form>(state.range(0));
    instrument played(built, 64);
    for (auto _ : state) {
        state.PauseTiming();
        played.play(10, true);
        played.render_second();
        played.play(10, false);
        played.render_second();
        state.ResumeTiming();
        played.render_second();
    }
    name_form(state, built);
}

BENCHMARK(second_after_playing)
    ->ArgNames({"plain"})
    ->Arg(fast)
    ->Arg(plain)
    ->Unit(benchmark::kMillisecond);

/// 500 instruments, of which 20 play ten keys each: a second of all of them.
void second_of_500(benchmark::State& state) {
    std::vector<std::unique_ptr<instrument>> orchestra;
    for (int i = 0; i < 500; ++i)
        orchestra.push_back(std::make_unique<instrument>(fast, 64));
    for (std::size_t i = 0; i < orchestra.size(); i += 25)
        orchestra[i]->play(10, true);
    const auto render = [&orchestra] {
        for (int frame = 0; frame < bench_rate; frame += 64)
            for (const auto& played : orchestra)
                played->render_block();
    };
    render();
    for (auto _ : state)
        render();
}

BENCHMARK(second_of_500)->Unit(benchmark::kMillisecond);

/// The block in which 49 keys are struck at once. Wall time, since a block is too short for the
/// clock of CPU time: the minimum is what an undisturbed machine needs.
void struck_block(benchmark::State& state) {
    const auto built = static_cast<form>(state.range(0));
    instrument played(built, 64);
    double shortest = 1;
    for (auto _ : state) {
        played.play(49, true);
        const auto start = std::chrono::steady_clock::now();
        played.render_block();
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(elapsed.count());
        shortest = std::min(shortest, elapsed.count());
        played.play(49, false);
        for (int b = 0; b < 30; ++b) // the releases end
            played.render_block();
    }
    state.counters["min_us"] = shortest * 1e6;
    name_form(state, built);
}

BENCHMARK(struck_block)
    ->ArgNames({"plain"})
    ->Arg(fast)
    ->Arg(plain)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

} // namespace
