/// The processor's state at the door, on the way in and on the way out.

#include "conformance/instrument.h"
#include "conformance/tables.h"
#include "conformance/text_sizes.h"
#include "probe/misaligned_call.h"
#include "probe/signal.h"

#include <algorithm>
#include <bit>
#include <cmath>
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
        events.add_midi(message_of(note_on(0, 60)), 0);
        events.add_midi(message_of(note_on(0, 26)), 0);
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

/// Silence after a note is exact: what decays, by 26 dB a second in the slowest filter, passes the
/// smallest normal number, at -759 dB, after 30 s and is 0 from there on.
void decays_to_zero(trial& running) {
    constexpr std::size_t second = 48000;
    _mm_setcsr(usual);
    instrument playing(running, {.rate = second, .blocks = {512}});
    const recording sound = playing.render(
        {note_on(0, 60), note_on(0, 26), note_off(4800, 60), note_off(4800, 26)}, 40 * second);
    _mm_setcsr(usual);
    for (const signal_span output : {signal_span(sound.right), signal_span(sound.left)}) {
        const auto nb_denormals = std::ranges::count_if(
            output, [](float sample) { return std::fpclassify(sample) == FP_SUBNORMAL; });
        running.expect(nb_denormals == 0, std::to_string(nb_denormals) + " samples are denormal");
        running.expect(peak(output.last(second)) == 0, "the last second is not silent");
    }
}

#if defined(__i386__)

std::uint32_t word_of(float value) { return std::bit_cast<std::uint32_t>(value); }

template <typename Pointer>
std::uint32_t word_of(Pointer* pointer) {
    return reinterpret_cast<std::uint32_t>(pointer);
}

/// A host that calls with its stack off.
struct misaligned_host {
    AEffect* effect;
    std::uint32_t offset; ///< bytes

    std::uint32_t ask(VstInt32 opcode, std::uint32_t index = 0, std::uint32_t value = 0,
                      void* ptr = nullptr, float opt = 0) const {
        return misaligned_call(word_of(effect->dispatcher),
                               {word_of(effect), static_cast<std::uint32_t>(opcode), index, value,
                                word_of(ptr), word_of(opt)},
                               offset);
    }

    void set(std::uint32_t index, float value) const {
        misaligned_call(word_of(effect->setParameter), {word_of(effect), index, word_of(value)},
                        offset);
    }

    [[nodiscard]] float get(std::uint32_t index) const {
        return misaligned_float_call(word_of(effect->getParameter), {word_of(effect), index},
                                     offset);
    }

    void process(float** outputs, std::uint32_t nb_frames) const {
        misaligned_call(word_of(effect->processReplacing),
                        {word_of(effect), 0, word_of(outputs), nb_frames}, offset);
    }
};

void expect_values(trial& running, const misaligned_host& asking) {
    char text[display_size];
    for (std::uint32_t index = 0; index < nb_parameters; ++index) {
        const float value = 0.1f + 0.05f * static_cast<float>(index);
        const float before = asking.get(index);
        asking.set(index, value);
        running.expect(asking.get(index) == value, "a value is not kept");
        asking.set(index, before);
        asking.ask(effGetParamDisplay, index, 0, text);
    }
}

void expect_editor(trial& running, const misaligned_host& asking) {
    ERect* size = nullptr;
    running.expect(asking.ask(effEditGetRect, 0, 0, &size) == 1 && size, "the panel has no size");
    running.expect(asking.ask(effEditOpen) == 0, "a panel opens in no window");
    asking.ask(effEditIdle);
    asking.ask(effEditClose);
}

/// Every call that a host makes, with the stack at any multiple of 4.
void misaligned_stack(trial& running) {
    instrument usual_calls(running, set_up{});
    recording wanted = usual_calls.render({note_on(0, 60)}, 4800);
    for (const std::uint32_t offset : {0u, 4u, 8u, 12u}) {
        running.doing = "a stack that is " + std::to_string(offset) + " bytes off";
        const instrument called(running);
        const misaligned_host asking{called.record(), offset};
        asking.ask(effSetSampleRate, 0, 0, nullptr, 48000);
        asking.ask(effSetBlockSize, 0, 64);
        asking.ask(effMainsChanged, 0, 1);
        expect_values(running, asking);
        expect_editor(running, asking);
        event_list events;
        events.add_midi(message_of(note_on(0, 60)), 0);
        asking.ask(effProcessEvents, 0, 0, events.records());
        std::vector<float> sound(4800);
        float* outputs[]{sound.data(), wanted.left.data()};
        asking.process(outputs, 4800);
        running.expect(difference_db(sound, wanted.right) < -75, "it plays otherwise");
    }
}

/// The entry, too, and the object that it makes.
void misaligned_entry(trial& running) {
    const library loaded(running.plugin_file);
    for (const std::uint32_t offset : {0u, 4u, 8u, 12u}) {
        running.doing = "a stack that is " + std::to_string(offset) + " bytes off";
        const audioMasterCallback answer = [](AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*,
                                              float) -> VstIntPtr {
            return opcode == audioMasterVersion ? kVstVersion : 0;
        };
        auto* effect = reinterpret_cast<AEffect*>(
            misaligned_call(word_of(plugin_entry(loaded)), {word_of(answer)}, offset));
        running.expect(effect != nullptr, "main gives no effect");
        misaligned_host{effect, offset}.ask(effClose);
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
