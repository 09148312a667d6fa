/// The processor's state is the host's.

#include "check/rows.h"
#include "check/vst_subject.h"
#include "probe/misaligned_call.h"

#include <bit>
#include <cstdint>
#include <optional>
#include <xmmintrin.h>

namespace {

constexpr unsigned sticky_flags = 0x003F;  ///< what arithmetic has met so far
constexpr unsigned denormals_off = 0x8040; ///< flush to zero, denormals are zero
constexpr unsigned usual = 0x1F80;         ///< every exception masked, rounding to nearest

std::uint16_t x87_control_word() {
    std::uint16_t word = 0;
    asm volatile("fnstcw %0" : "=m"(word));
    return word;
}

std::string hex_text(unsigned number) {
    char text[16];
    std::snprintf(text, sizeof text, "%04X", number);
    return text;
}

/// What a plug-in sets for its own arithmetic it puts back, or all of its host computes otherwise
/// from then on. That denormals stay off hosts hardly notice, as they switch them off themselves.
void expect_kept(trial& running, unsigned before, const std::function<void()>& play) {
    const std::uint16_t x87_before = x87_control_word();
    _mm_setcsr(before);
    play();
    const unsigned after = _mm_getcsr();
    const std::uint16_t x87_after = x87_control_word();
    _mm_setcsr(usual);
    const std::string change = "MXCSR " + hex_text(before) + " becomes " + hex_text(after);
    running.expect(((after ^ before) & ~(sticky_flags | denormals_off)) == 0, change);
    running.expect((before & ~after & denormals_off) == 0, change);
    running.expect(x87_after == x87_before, "the x87 control word " + hex_text(x87_before)
                                                + " becomes " + hex_text(x87_after));
    running.prefer((after & denormals_off) == (before & denormals_off),
                   "it leaves denormals switched off for its host");
}

void control_registers(trial& running) {
    for (const unsigned before : {usual, usual | 0x2000u, usual | 0x6000u, usual | denormals_off}) {
        std::optional<subject> played;
        expect_kept(running, before, [&] { played.emplace(running, usual_rate, usual_block); });
        require_outputs(running, *played);
        played->make_room(usual_block);
        expect_kept(running, before, [&] { played->strike(middle_note); });
        for (int i = 0; i < 10; ++i)
            expect_kept(running, before, [&] { played->run(usual_block); });
    }
}

#if defined(__i386__) && defined(_WIN32)

std::uint32_t word_of(float value) { return std::bit_cast<std::uint32_t>(value); }

template <typename Pointer>
std::uint32_t word_of(Pointer* pointer) {
    return reinterpret_cast<std::uint32_t>(pointer);
}

/// A host that calls with its stack some bytes off a multiple of 16.
struct misaligned_host {
    AEffect* effect;
    std::uint32_t offset;

    void ask(VstInt32 opcode, std::uint32_t value = 0, void* ptr = nullptr, float opt = 0) const {
        misaligned_call(word_of(effect->dispatcher),
                        {word_of(effect), static_cast<std::uint32_t>(opcode), 0, value,
                         word_of(ptr), word_of(opt)},
                        offset);
    }
};

void call_misaligned(vst_subject& called, std::uint32_t offset) {
    const misaligned_host host{&called.record(), offset};
    host.ask(effSetSampleRate, 0, nullptr, usual_rate);
    host.ask(effSetBlockSize, usual_block);
    host.ask(effMainsChanged, 1);
    for (VstInt32 i = 0; i < called.record().numParams; ++i) {
        const auto index = static_cast<std::uint32_t>(i);
        const std::uint32_t effect = word_of(host.effect);
        const float value =
            misaligned_float_call(word_of(host.effect->getParameter), {effect, index}, offset);
        misaligned_call(word_of(host.effect->setParameter), {effect, index, word_of(value)},
                        offset);
    }
    event_list events;
    const std::uint8_t note[]{0x90, middle_note, 100};
    events.add_midi(note, 0);
    host.ask(effProcessEvents, 0, events.records());
    std::vector<std::vector<float>> channels(
        static_cast<std::size_t>(called.record().numInputs + called.record().numOutputs),
        std::vector<float>(usual_block));
    std::vector<float*> pointers;
    for (auto& channel : channels)
        pointers.push_back(channel.data());
    misaligned_call(word_of(host.effect->processReplacing),
                    {word_of(host.effect), word_of(pointers.data()),
                     word_of(pointers.data() + called.record().numInputs),
                     static_cast<std::uint32_t>(usual_block)},
                    offset);
    host.ask(effMainsChanged, 0);
}

void misaligned_stack(trial& running) {
    for (const std::uint32_t offset : {0u, 4u, 8u, 12u}) {
        running.doing("a stack that is " + std::to_string(offset) + " bytes off");
        vst_subject called(running);
        require_outputs(running, called);
        call_misaligned(called, offset);
    }
    running.doing("");
}

#else

void misaligned_stack(trial& running) { running.skip("hosts of this system align the stack"); }

#endif

} // namespace

table processor_rows() {
    return table{{"processor/control registers", demand::interface, control_registers}}
           + only(plugin_format::vst,
                  {{"processor/misaligned stack", demand::interface, misaligned_stack}});
}
