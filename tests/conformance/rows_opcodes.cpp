/// Every opcode but effClose, with arguments that no sane host sends.

#include "conformance/instrument.h"
#include "conformance/tables.h"
#include "conformance/text_sizes.h"
#include "probe/signal.h"

#include <algorithm>
#include <limits>
#include <map>

namespace {

enum class takes { nothing, memory, memory_in_value_too };

/// What memory holds after the call. What an opcode reads is zeros before it, too: an empty text,
/// a list without events.
enum class leaves { untouched, zeros_it_reads, zeros, text, parameter_text, pointer };

struct opcode_case {
    takes argument = takes::nothing;
    std::size_t nb_bytes = 0;
    VstIntPtr answer = 0; ///< what echoes its value is judged apart
    leaves left = leaves::untouched;
};

constexpr std::size_t opaque_size = 16; ///< records that only ever pass through
constexpr std::size_t pointer_size = sizeof(void*);

/// The opcodes that take memory or answer other than 0. The panel is closed, and effEditOpen gets
/// null: any other address would be a window.
const std::map<VstInt32, opcode_case> documented{
    {effSetProgramName, {takes::memory, kVstMaxProgNameLen, 0, leaves::zeros_it_reads}},
    {effGetProgramName, {takes::memory, kVstMaxProgNameLen, 0, leaves::text}},
    {effGetParamLabel, {takes::memory, label_size}},
    {effGetParamDisplay, {takes::memory, display_size, 0, leaves::parameter_text}},
    {effGetParamName, {takes::memory, name_size, 0, leaves::parameter_text}},
    {effEditGetRect, {takes::memory, pointer_size, 1, leaves::pointer}},
    {__effIdentifyDeprecated, {takes::nothing, 0, kEffectIdentify}},
    {effGetChunk, {takes::memory, pointer_size}},
    {effSetChunk, {takes::memory, opaque_size}},
    {effProcessEvents, {takes::memory, sizeof(VstEvents), 1, leaves::zeros_it_reads}},
    {effCanBeAutomated, {takes::nothing, 0, 1}},
    {effString2Parameter, {takes::memory, kVstMaxProgNameLen}},
    {effGetProgramNameIndexed, {takes::memory, kVstMaxProgNameLen}},
    {effGetInputProperties, {takes::memory, sizeof(VstPinProperties)}},
    {effGetOutputProperties, {takes::memory, sizeof(VstPinProperties)}},
    {effGetPlugCategory, {takes::nothing, 0, kPlugCategSynth}},
    {effOfflineNotify, {takes::memory, opaque_size}},
    {effOfflinePrepare, {takes::memory, opaque_size}},
    {effOfflineRun, {takes::memory, opaque_size}},
    {effProcessVarIo, {takes::memory, opaque_size}},
    {effSetSpeakerArrangement, {takes::memory_in_value_too, sizeof(VstSpeakerArrangement)}},
    {effGetEffectName, {takes::memory, kVstMaxEffectNameLen, 1, leaves::text}},
    {effGetVendorString, {takes::memory, kVstMaxVendorStrLen, 1, leaves::text}},
    {effGetProductString, {takes::memory, kVstMaxProductStrLen, 1, leaves::text}},
    {effGetVendorVersion, {takes::nothing, 0, 1}},
    {effVendorSpecific, {takes::memory, opaque_size}},
    {effCanDo, {takes::memory, kVstMaxEffectNameLen, 0, leaves::zeros_it_reads}},
    {effGetParameterProperties, {takes::memory, sizeof(VstParameterProperties)}},
    {effGetVstVersion, {takes::nothing, 0, kVstVersion}},
    {effEditKeyDown, {takes::nothing, 0, 1}},
    {effSetEditKnobMode, {takes::nothing, 0, 1}},
    {effGetMidiProgramName, {takes::memory, sizeof(MidiProgramName)}},
    {effGetCurrentMidiProgram, {takes::memory, sizeof(MidiProgramName), -1}},
    {effGetMidiProgramCategory, {takes::memory, sizeof(MidiProgramCategory)}},
    {effGetMidiKeyName, {takes::memory, sizeof(MidiKeyName)}},
    {effGetSpeakerArrangement, {takes::memory_in_value_too, pointer_size, 0, leaves::zeros}},
    {effShellGetNextPlugin, {takes::memory, kVstMaxProductStrLen}},
    {effBeginLoadBank, {takes::memory, sizeof(VstPatchChunkInfo)}},
    {effBeginLoadProgram, {takes::memory, sizeof(VstPatchChunkInfo)}},
    {effGetNumMidiInputChannels, {takes::nothing, 0, 1}},
    {effGetNumMidiOutputChannels, {takes::nothing, 0, 1}}};

constexpr VstInt32 extreme_indices[]{std::numeric_limits<VstInt32>::min(), -1, 0, 9, 10, 255, 256,
                                     std::numeric_limits<VstInt32>::max()};
constexpr VstIntPtr extreme_values[]{
    std::numeric_limits<VstIntPtr>::min(), std::numeric_limits<VstInt32>::min(), -1, 0, 1,
    std::numeric_limits<VstInt32>::max(),  std::numeric_limits<VstIntPtr>::max()};
constexpr float extreme_opts[]{0.0f,
                               -1.0f,
                               1e30f,
                               static_cast<float>(std::numeric_limits<VstInt32>::max()),
                               std::numeric_limits<float>::infinity(),
                               std::numeric_limits<float>::quiet_NaN()};

struct arguments {
    VstInt32 opcode;
    VstInt32 index;
    VstIntPtr value;
    float opt;
};

std::string call_text(const arguments& given) {
    return "opcode " + std::to_string(given.opcode) + ", index " + std::to_string(given.index)
           + ", value " + std::to_string(given.value) + ", opt " + std::to_string(given.opt);
}

bool is_left(leaves left, VstInt32 index, const guarded_memory& memory) {
    const auto nb_zeros =
        static_cast<std::size_t>(std::count(memory.data(), memory.data() + memory.size(), '\0'));
    switch (left) {
    case leaves::untouched:
        return memory.is_untouched();
    case leaves::zeros_it_reads:
    case leaves::zeros:
        return nb_zeros == memory.size();
    case leaves::text:
        return nb_zeros > 0;
    case leaves::parameter_text:
        return is_left(index >= 0 && index < nb_parameters ? leaves::text : leaves::untouched,
                       index, memory);
    case leaves::pointer:
        return !memory.is_untouched() && nb_zeros < memory.size();
    }
    return false;
}

/// The memory that an opcode is given, as an argument and in its value.
struct argument_memory {
    explicit argument_memory(const opcode_case& given)
        : first(given.nb_bytes),
          second(given.argument == takes::memory_in_value_too ? given.nb_bytes : 0) {}

    void fill(leaves left) {
        for (guarded_memory* memory : {&first, &second}) {
            memory->refill();
            if (left == leaves::zeros_it_reads)
                std::fill_n(memory->data(), memory->size(), '\0');
        }
    }

    guarded_memory first;
    guarded_memory second;
};

opcode_case case_of(VstInt32 opcode) {
    const auto found = documented.find(opcode);
    return found == documented.end() ? opcode_case{} : found->second;
}

void expect_answer(const trial& running, const arguments& given, VstIntPtr answer) {
    VstIntPtr wanted = case_of(given.opcode).answer;
    if (given.opcode == effSetTotalSampleToProcess) {
        if (given.value != static_cast<VstInt32>(given.value))
            return;
        wanted = given.value;
    }
    running.expect(answer == wanted,
                   "it answers " + std::to_string(answer) + ", wanted " + std::to_string(wanted));
}

void ask(instrument& asked, const arguments& given, argument_memory& memory) {
    const opcode_case expected = case_of(given.opcode);
    asked.running.doing = call_text(given);
    memory.fill(expected.left);
    const VstIntPtr value = expected.argument == takes::memory_in_value_too
                                ? reinterpret_cast<VstIntPtr>(memory.second.data())
                                : given.value;
    void* ptr = expected.nb_bytes > 0 ? memory.first.data() : nullptr;
    const VstIntPtr answer = asked.ask(given.opcode, given.index, value, ptr, given.opt);
    for (const guarded_memory* handed : {&memory.first, &memory.second}) {
        asked.running.expect(handed->front_holds(), "it writes in front of its memory");
        asked.running.expect(handed->size() == 0 || is_left(expected.left, given.index, *handed),
                             "it leaves something else in its memory");
    }
    expect_answer(asked.running, given, answer);
}

void extreme_arguments(trial& running, VstInt32 opcode) {
    instrument asked(running, set_up{});
    argument_memory memory(case_of(opcode));
    for (const VstInt32 index : extreme_indices)
        for (const VstIntPtr value : extreme_values)
            for (const float opt : extreme_opts)
                ask(asked, {opcode, index, value, opt}, memory);
    running.doing.clear();
    asked.prepare({});
    const recording sound = asked.render({note_on(0, 50)}, 4800);
    running.expect(peak(sound.right) > 1e-3, "it does not play any more");
}

void null_pointers(trial& running) {
    instrument asked(running, set_up{});
    for (VstInt32 opcode = -10; opcode <= 200; ++opcode) {
        if (opcode == effClose)
            continue;
        const arguments given{opcode, 0, 0, 0};
        running.doing = call_text(given) + ", null";
        const VstIntPtr answer = asked.ask(opcode, 0, 0, nullptr);
        if (opcode != effEditGetRect) // which has nowhere to put it
            expect_answer(running, given, answer);
    }
}

} // namespace

table opcode_rows() {
    table rows{{"opcodes/null pointers", null_pointers}};
    for (VstInt32 opcode = -10; opcode <= 200; ++opcode)
        if (opcode != effClose)
            rows.push_back({"opcodes/" + std::to_string(opcode),
                            [opcode](trial& running) { extreme_arguments(running, opcode); }});
    return rows;
}
