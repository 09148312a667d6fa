/// What setting up costs: banks, loading and creating, memory.

#include "bench/instrument.h"
#include "korvel/filtered_zelm_oscs.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <dlfcn.h>
#include <filesystem>
#include <malloc.h>

namespace {

void bank(benchmark::State& state) {
    const auto rate = static_cast<int>(state.range(0));
    const auto built = static_cast<form>(state.range(1));
    random15 random{1};
    for (auto _ : state)
        oscillators_bank_free(built == fast ? korvel_bank_filtered(rate, random)
                                            : plain_bank_filtered(rate, random));
    state.SetLabel(built == fast ? "fast" : "plain");
}

BENCHMARK(bank)
    ->ArgNames({"rate", "plain"})
    ->ArgsProduct({{22050, 44100, 48000, 88200, 96000, 176400, 192000}, {fast, plain}})
    ->Unit(benchmark::kMillisecond);

void create_and_first_block(benchmark::State& state) {
    const auto built = static_cast<form>(state.range(0));
    for (auto _ : state) {
        instrument created(built, 64);
        created.render_block();
    }
    state.SetLabel(built == fast ? "fast" : "plain");
}

BENCHMARK(create_and_first_block)
    ->ArgNames({"plain"})
    ->Arg(fast)
    ->Arg(plain)
    ->Unit(benchmark::kMillisecond);

/// The library beside this program as a scanner treats it: load, create, ask, close, unload. The
/// iterations are one scan after the other; "max_ms" is the slowest.
void scan(benchmark::State& state) {
    const auto file =
        std::filesystem::read_symlink("/proc/self/exe").parent_path() / "tindelwax.so";
    double slowest = 0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
        const auto entry =
            reinterpret_cast<VstPluginMainProc>(library ? dlsym(library, "main") : nullptr);
        if (!entry) {
            state.SkipWithError("tindelwax.so is not beside the bench");
            return;
        }
        AEffect* effect = entry([](AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
            return static_cast<VstIntPtr>(opcode == audioMasterVersion ? kVstVersion : 0);
        });
        const auto ask = [effect](VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0,
                                  void* ptr = nullptr, float opt = 0) {
            effect->dispatcher(effect, opcode, index, value, ptr, opt);
        };
        char text[256];
        ask(effOpen);
        for (const VstInt32 name : {effGetEffectName, effGetVendorString, effGetProductString})
            ask(name, 0, 0, text);
        for (VstInt32 i = 0; i < effect->numParams; ++i)
            for (const VstInt32 shown : {effGetParamName, effGetParamLabel, effGetParamDisplay})
                ask(shown, i, 0, text);
        ask(effSetSampleRate, 0, 0, nullptr, bench_rate);
        ask(effSetBlockSize, 0, 64);
        std::array<float, 64> left, right;
        float* outputs[] = {right.data(), left.data()};
        effect->processReplacing(effect, nullptr, outputs, 64);
        ask(effClose);
        dlclose(library);
        const std::chrono::duration<double, std::milli> elapsed =
            std::chrono::steady_clock::now() - start;
        slowest = std::max(slowest, elapsed.count());
    }
    state.counters["max_ms"] = slowest;
}

BENCHMARK(scan)->Iterations(200)->Unit(benchmark::kMillisecond);

/// Bytes that an instance holds after its first block.
void memory(benchmark::State& state) {
    const auto in_use = [] {
        const auto info = mallinfo2();
        return static_cast<double>(info.uordblks + info.hblkhd);
    };
    const auto built = static_cast<form>(state.range(0));
    double held = 0;
    for (auto _ : state) {
        const double before = in_use();
        instrument created(built, 64);
        created.render_block();
        held = in_use() - before;
    }
    state.counters["KiB"] = held / 1024;
    state.SetLabel(built == fast ? "fast" : "plain");
}

BENCHMARK(memory)->ArgNames({"plain"})->Arg(fast)->Arg(plain)->Iterations(1);

} // namespace
