/// The processor's state at the door, on the way in and on the way out.

#include "conformance/instrument.h"
#include "conformance/measure.h"
#include "conformance/misaligned_call.h"
#include "conformance/tables.h"

#include <bit>
#include <cstdint>
#include <xmmintrin.h>

namespace {

constexpr unsigned denormals_off = 0x8040; ///< flush to zero, denormals are zero
constexpr unsigned sticky_flags = 0x003F;  ///< what arithmetic has met so far
constexpr unsigned usual = 0x1F80;         ///< every exception masked, rounding to nearest

std::uint16_t x87_control_word() {
    std::uint16_t word = 0;
    asm volatile("fnstcw %0" : "=m"(word));
    return word;
}

void control_register(trial& running) {
    constexpr unsigned invalid_zero_overflow = 0x0680; ///< hosts in Pascal unmask these
    for (const unsigned before : {usual, usual | 0x2000u, usual | 0x6000u, usual | 0x8000u,
                                  usual | 0x0040u, usual & ~invalid_zero_overflow}) {
        instrument playing(running, set_up{});
        event_list events;
        events.add(note_on(0, 60), 0);
        events.add(note_on(0, 26), 0);
        playing.send(events);
        const std::uint16_t x87_before = x87_control_word();
        recording sound;
        _mm_setcsr(before);
        playing.process(sound, 480);
        const unsigned after = _mm_getcsr();
        const std::uint16_t x87_after = x87_control_word();
        _mm_setcsr(usual);
        running.expect((after & ~sticky_flags) == ((before | denormals_off) & ~sticky_flags),
                       "MXCSR " + std::to_string(before) + " becomes " + std::to_string(after));
        running.expect(x87_after == x87_before, "the x87 control word changes");
    }
}

/// Silence after a note is exact: what decays ends at 0, not among the denormals.
void decays_to_zero(trial& running) {
    _mm_setcsr(usual);
    instrument playing(running, {.blocks = {512}});
    playing.render({note_on(0, 60), note_on(0, 26), note_off(4800, 60), note_off(4800, 26)}, 4800);
    const recording sound = playing.render({}, 60 * 48000);
    std::size_t nb_denormals = 0;
    for (const float sample : sound.right)
        nb_denormals += std::fpclassify(sample) == FP_SUBNORMAL;
    _mm_setcsr(usual);
    running.expect(nb_denormals == 0, std::to_string(nb_denormals) + " samples are denormal");
}

#if defined(__i386__)

std::uint32_t word_of(float value) { return std::bit_cast<std::uint32_t>(value); }

template <typename Pointer>
std::uint32_t word_of(Pointer* pointer) {
    return reinterpret_cast<std::uint32_t>(pointer);
}

/// Every call that a host makes, with the stack at any multiple of 4.
void misaligned_stack(trial& running) {
    instrument usual_calls(running, set_up{});
    recording wanted = usual_calls.render({note_on(0, 60)}, 4800);
    for (const std::uint32_t offset : {0u, 4u, 8u, 12u}) {
        running.doing = "a stack that is " + std::to_string(offset) + " bytes off";
        instrument called(running);
        AEffect* effect = called.effect;
        const auto ask = [&](VstInt32 opcode, std::uint32_t value, std::uint32_t ptr, float opt) {
            return misaligned_call(
                word_of(effect->dispatcher),
                {word_of(effect), static_cast<std::uint32_t>(opcode), 0, value, ptr, word_of(opt)},
                offset);
        };
        ask(effSetSampleRate, 0, 0, 48000);
        ask(effSetBlockSize, 64, 0, 0);
        ask(effMainsChanged, 1, 0, 0);
        misaligned_call(word_of(effect->setParameter), {word_of(effect), contour, word_of(0.1f)},
                        offset);
        char text[16];
        for (std::uint32_t index = 0; index < nb_parameters; ++index)
            misaligned_call(word_of(effect->dispatcher),
                            {word_of(effect), effGetParamDisplay, index, 0, word_of(text), 0},
                            offset);
        event_list events;
        events.add(note_on(0, 60), 0);
        ask(effProcessEvents, 0, word_of(events.record()), 0);
        std::vector<float> sound(4800);
        float* outputs[]{sound.data(), wanted.left.data()};
        misaligned_call(word_of(effect->processReplacing),
                        {word_of(effect), 0, word_of(outputs), 4800}, offset);
        running.expect(difference_db(sound, wanted.right) < -75, "it plays otherwise");
    }
}

/// The entry, too, and the object that it makes.
void misaligned_entry(trial& running) {
    const plugin_library library(running.plugin_file);
    for (const std::uint32_t offset : {0u, 4u, 8u, 12u}) {
        running.doing = "a stack that is " + std::to_string(offset) + " bytes off";
        const audioMasterCallback answer = [](AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*,
                                              float) -> VstIntPtr {
            return opcode == audioMasterVersion ? kVstVersion : 0;
        };
        auto* effect = reinterpret_cast<AEffect*>(
            misaligned_call(word_of(library.entry()), {word_of(answer)}, offset));
        running.expect(effect != nullptr, "main gives no effect");
        misaligned_call(word_of(effect->dispatcher), {word_of(effect), effClose, 0, 0, 0, 0},
                        offset);
    }
}

#endif

} // namespace

table processor_rows() {
    table rows{{"processor/control register", control_register},
               {"processor/decays to zero", decays_to_zero}};
#if defined(__i386__)
    rows.push_back({"processor/misaligned stack", misaligned_stack});
    rows.push_back({"processor/misaligned stack at the entry", misaligned_entry});
#endif
    return rows;
}
