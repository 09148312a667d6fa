/// Requests with arguments that hosts do not send every day.

#include "check/rows.h"
#include "check/vst_subject.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

using ints = std::numeric_limits<VstInt32>;

/// Requests that carry memory, and how much.
struct memory_case {
    VstInt32 opcode;
    std::size_t nb_bytes;
    bool in_value_too = false;
};

constexpr memory_case records[]{{effGetInputProperties, sizeof(VstPinProperties)},
                                {effGetOutputProperties, sizeof(VstPinProperties)},
                                {effGetParameterProperties, sizeof(VstParameterProperties)},
                                {effGetMidiProgramName, sizeof(MidiProgramName)},
                                {effGetCurrentMidiProgram, sizeof(MidiProgramName)},
                                {effGetMidiProgramCategory, sizeof(MidiProgramCategory)},
                                {effGetMidiKeyName, sizeof(MidiKeyName)},
                                {effSetSpeakerArrangement, sizeof(VstSpeakerArrangement), true},
                                {effBeginLoadBank, sizeof(VstPatchChunkInfo)},
                                {effBeginLoadProgram, sizeof(VstPatchChunkInfo)},
                                {effProcessEvents, sizeof(VstEvents)},
                                {effShellGetNextPlugin, kVstMaxProductStrLen},
                                {effSetProgramName, kVstMaxProgNameLen},
                                {effString2Parameter, kVstMaxProgNameLen},
                                {effCanDo, 64}};

/// Those of texts, of chunks and the panel's size carry memory, too.
constexpr VstInt32 pointers[]{
    effGetProgramName,        effGetParamLabel, effGetParamDisplay, effGetParamName,
    effGetProgramNameIndexed, effGetEffectName, effGetVendorString, effGetProductString,
    effEditGetRect,           effEditOpen,      effGetChunk,        effSetChunk,
    effGetSpeakerArrangement, effOfflineNotify, effOfflinePrepare,  effOfflineRun,
    effProcessVarIo,          effVendorSpecific};

bool carries_memory(VstInt32 opcode) {
    return std::ranges::count(pointers, opcode) > 0
           || std::ranges::count(records, opcode, &memory_case::opcode) > 0;
}

void in_records(trial& running) {
    const vst_subject asked(running, usual_rate, usual_block);
    for (const memory_case& given : records) {
        running.doing("opcode " + std::to_string(given.opcode));
        const guarded_memory first(given.nb_bytes);
        const guarded_memory second(given.nb_bytes);
        std::memset(first.data(), 0, first.size());
        std::memset(second.data(), 0, second.size());
        const auto value = given.in_value_too ? reinterpret_cast<VstIntPtr>(second.data()) : 0;
        asked.ask(given.opcode, 0, value, first.data());
        running.expect(first.front_holds() && second.front_holds(), "it writes before a record");
    }
    running.doing("");
}

void unknown(trial& running) {
    const vst_subject asked(running, usual_rate, usual_block);
    std::vector<VstInt32> opcodes{ints::min(), 1000, ints::max()};
    for (VstInt32 i = 1; i <= 50; ++i)
        opcodes.insert(opcodes.end(), {-i, effGetNumMidiOutputChannels + i});
    for (const VstInt32 opcode : opcodes) {
        running.doing("opcode " + std::to_string(opcode));
        running.prefer(asked.ask(opcode) == 0, "it answers requests that do not exist");
    }
    running.doing("");
}

void extreme_arguments(trial& running) {
    vst_subject asked(running, usual_rate, usual_block);
    for (VstInt32 opcode = effOpen; opcode <= effGetNumMidiOutputChannels; ++opcode) {
        if (opcode == effClose || carries_memory(opcode))
            continue;
        for (const VstInt32 figure : {ints::min(), -1, 255, ints::max()}) {
            running.doing("opcode " + std::to_string(opcode) + ", index and value "
                          + std::to_string(figure));
            asked.ask(opcode, figure, figure, nullptr, static_cast<float>(figure));
        }
    }
    running.doing("afterwards");
    require_outputs(running, asked);
    asked.prepare(usual_rate, usual_block);
    asked.expect_plays(false);
    running.doing("");
}

void null_pointers(trial& running) {
    const vst_subject asked(running, usual_rate, usual_block);
    const auto ask_null = [&](VstInt32 opcode) {
        running.doing("opcode " + std::to_string(opcode) + " with null");
        asked.ask(opcode);
    };
    for (const memory_case& given : records)
        ask_null(given.opcode);
    for (const VstInt32 opcode : pointers)
        ask_null(opcode);
    running.doing("");
}

} // namespace

table opcode_rows() {
    return only(plugin_format::vst,
                {{"opcodes/records", demand::interface, in_records},
                 {"opcodes/unknown", demand::interface, unknown},
                 {"opcodes/extreme arguments", demand::hosts, extreme_arguments},
                 {"opcodes/null pointers", demand::hosts, null_pointers}});
}
