// An instrument for tests: a sine for each held note, and a log of what its host does with it.

#include "vst/interface.h"

#include <array>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::array parameter_names{"Volume", "Vibrato", "Mix", "MIX"};
constexpr const char* long_vendor_name =
    "a vendor whose name is longer than any host of its interface expects, alas";
constexpr float release_per_100_ms = 1e-4f; // the gain left after so long
constexpr float inaudible = 1e-6f;

struct sine {
    AEffect effect{};
    audioMasterCallback host = nullptr;
    std::FILE* p_log = nullptr;
    std::array<float, parameter_names.size()> parameters{1, 0, 0.25f, 0.75f};
    std::array<int, 128> nb_strokes{};
    std::array<float, 128> gains{};
    double rate = 44100;
    double phase = 0;
    double tempo = 0;
    long frame = 0;
    std::istringstream signals{}; // a frame, and the signals that are raised once it is reached
    long signals_frame = -1;
    long block_frames = 0;
    std::vector<double> sums{};
};

sine& self(AEffect* effect) { return *static_cast<sine*>(effect->object); }

/// Returns what opcodes answer that have no answer.
template <typename... Values>
VstIntPtr log(sine& s, const char* format, Values... values) {
    if (s.p_log)
        std::fprintf(s.p_log, format, values...);
    return 0;
}

void receive_midi(sine& s, const VstMidiEvent& event) {
    const auto* data = reinterpret_cast<const unsigned char*>(event.midiData);
    log(s, "%ld: %02X %02X %02X\n", s.frame + event.deltaFrames, data[0], data[1], data[2]);
    const bool strikes = (data[0] & 0xF0) == 0x90 && data[2] > 0;
    if (strikes || (data[0] & 0xE0) == 0x80)
        s.nb_strokes[data[1]] += strikes ? 1 : -1;
    if (strikes)
        s.gains[data[1]] = 0.25f;
}

void receive_sysex(sine& s, const VstMidiSysexEvent& event) {
    log(s, "%ld: dump", s.frame + event.deltaFrames);
    for (VstInt32 i = 0; i < event.dumpBytes; ++i)
        log(s, " %02X", static_cast<unsigned char>(event.sysexDump[i]));
    log(s, "\n");
}

void receive(sine& s, const VstEvents& events) {
    VstEvent* const* list = events.events;
    for (VstInt32 i = 0; i < events.numEvents; ++i) {
        if (list[i]->deltaFrames < 0 || list[i]->deltaFrames >= s.block_frames)
            log(s, "outside the block ");
        if (list[i]->type == kVstSysExType)
            receive_sysex(s, *reinterpret_cast<const VstMidiSysexEvent*>(list[i]));
        else
            receive_midi(s, *reinterpret_cast<const VstMidiEvent*>(list[i]));
    }
}

VstIntPtr write(void* ptr, const char* text) {
    std::strcpy(static_cast<char*>(ptr), text);
    return 1;
}

VstIntPtr ask(sine& s, VstInt32 opcode, const char* text = nullptr) {
    return s.host(&s.effect, opcode, 0, 0, const_cast<char*>(text), 0);
}

void log_host(sine& s) {
    std::array<char, 64> vendor{};
    std::array<char, 64> product{};
    const auto answers_vendor = ask(s, audioMasterGetVendorString, vendor.data());
    const auto answers_product = ask(s, audioMasterGetProductString, product.data());
    log(s, "%ld %s, %ld %s, can %ld %ld, ", answers_vendor, vendor.data(), answers_product,
        product.data(), ask(s, audioMasterCanDo, "sendVstMidiEvent"),
        ask(s, audioMasterCanDo, "makeTea"));
}

VstIntPtr log_setup(sine& s) {
    return log(s, "rate %ld, block %ld, level %ld\n", ask(s, audioMasterGetSampleRate),
               ask(s, audioMasterGetBlockSize), ask(s, audioMasterGetCurrentProcessLevel));
}

VstIntPtr finish(sine& s) {
    log(s, "close\n");
    if (s.p_log)
        std::fclose(s.p_log);
    delete &s;
    return 1;
}

VstIntPtr VSTCALLBACK dispatch(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value,
                               void* ptr, float opt) {
    sine& s = self(effect);
    const auto position = static_cast<std::size_t>(index);
    // A table, one row an opcode.
    // clang-format off
    switch (opcode) {
    case effOpen: return log(s, "open\n");
    case effClose: return finish(s);
    case effSetSampleRate: return log(s, "rate %.0f\n", s.rate = static_cast<double>(opt));
    case effSetBlockSize: return log(s, "block %ld\n", s.block_frames = value);
    case effMainsChanged: return log(s, "mains %d\n", static_cast<int>(value));
    case effStartProcess: std::fputs("words", stderr); log_setup(s); return log(s, "start\n");
    case effStopProcess: return log(s, "stop\n");
    case effProcessEvents: receive(s, *static_cast<const VstEvents*>(ptr)); return 1;
    case effGetParamName: return write(ptr, parameter_names[position]);
    case effGetParamDisplay: return write(ptr, s.parameters[position] > 0.5f ? "ON" : "OFF");
    case effGetEffectName: return write(ptr, "Sine");
    case effGetVendorString: return write(ptr, long_vendor_name);
    case effGetPlugCategory: return kPlugCategSynth;
    case effGetVstVersion: return kVstVersion;
    default: return 0;
    }
    // clang-format on
}

void VSTCALLBACK set_parameter(AEffect* effect, VstInt32 index, float value) {
    self(effect).parameters[static_cast<std::size_t>(index)] = value;
    log(self(effect), "parameter %d %.2f\n", index, static_cast<double>(value));
}

float VSTCALLBACK get_parameter(AEffect* effect, VstInt32 index) {
    return self(effect).parameters[static_cast<std::size_t>(index)];
}

void note_tempo(sine& s) {
    const auto* time = reinterpret_cast<const VstTimeInfo*>(
        s.host(&s.effect, audioMasterGetTime, 0, 0, nullptr, 0));
    if (time->tempo != s.tempo)
        log(s, "%ld: tempo %.1f from %.2f\n", s.frame, time->tempo, time->ppqPos);
    s.tempo = time->tempo;
}

void raise_signals(sine& s) {
    if (s.signals_frame < 0 || s.frame < s.signals_frame)
        return;
    for (int number = 0; s.signals >> number;)
        number < 0 ? pause() : std::raise(number);
}

void VSTCALLBACK process(AEffect* effect, float**, float** outputs, VstInt32 nb_frames) {
    sine& s = self(effect);
    raise_signals(s);
    note_tempo(s);
    const float release = static_cast<float>(std::pow(release_per_100_ms, 10 / s.rate));
    std::vector<double>& sums = s.sums;
    sums.assign(static_cast<std::size_t>(nb_frames), 0);
    for (std::size_t note = 0; note < s.gains.size(); ++note) {
        const double hz = 440 * std::exp2((static_cast<double>(note) - 69) / 12);
        for (std::size_t i = 0; i < sums.size() && s.gains[note] >= inaudible; ++i) {
            const double seconds = static_cast<double>(s.frame + static_cast<long>(i)) / s.rate;
            sums[i] +=
                static_cast<double>(s.gains[note]) * std::sin(6.283185 * hz * seconds + s.phase);
            if (s.nb_strokes[note] <= 0)
                s.gains[note] *= release;
        }
    }
    for (VstInt32 output = 0; output < effect->numOutputs; ++output)
        for (std::size_t i = 0; i < sums.size(); ++i)
            outputs[output][i] =
                static_cast<float>(sums[i]) * s.parameters[0] / static_cast<float>(1 + output / 2);
    s.frame += nb_frames;
}

AEffect* create(audioMasterCallback host) {
    std::puts("EOF"); // instruments do print; it must not get into anybody's audio
    if (host(nullptr, audioMasterVersion, 0, 0, nullptr, 0) < kVstVersion)
        return nullptr;
    const char* p_fault = std::getenv("TINDELWAX_TEST_FAULT");
    const std::string fault = p_fault ? p_fault : "";
    if (fault == "answers null")
        return nullptr;
    if (fault == "exits")
        std::exit(0);
    static sine refused; // nobody closes it
    auto* s = fault == "answers rubbish" || fault == "endless parameters" ? &refused : new sine;
    s->host = host;
    if (const char* log_name = std::getenv("TINDELWAX_TEST_LOG"))
        s->p_log = std::fopen(log_name, "w");
    if (const char* signals = std::getenv("TINDELWAX_TEST_SIGNALS")) {
        s->signals.str(signals);
        s->signals >> s->signals_frame;
    }
    if (const char* seed = std::getenv("TINDELWAX_SEED"))
        s->phase = std::atoi(seed);
    s->effect.magic = fault == "answers rubbish" ? 0 : kEffectMagic;
    s->effect.dispatcher = dispatch;
    s->effect.setParameter = set_parameter;
    s->effect.getParameter = get_parameter;
    s->effect.processReplacing = process;
    s->effect.numParams =
        fault == "endless parameters" ? INT32_MAX : static_cast<VstInt32>(parameter_names.size());
    const char* nb_outputs = std::getenv("TINDELWAX_TEST_OUTPUTS");
    s->effect.numOutputs = nb_outputs ? std::atoi(nb_outputs) : 2;
    s->effect.flags = fault == "processes nothing" ? 0 : effFlagsCanReplacing | effFlagsIsSynth;
    s->effect.uniqueID = SINE_ID;
    s->effect.version = 1;
    s->effect.object = s;
    log_host(*s);
    log_setup(*s);
    return &s->effect;
}

} // namespace

// C++ keeps the name main for itself, so it is given past the compiler.
extern "C" __attribute__((visibility("default"))) AEffect* VSTCALLBACK
sine_entry(audioMasterCallback host) __asm__(SINE_ENTRY);

AEffect* sine_entry(audioMasterCallback host) { return create(host); }
