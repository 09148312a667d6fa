/// What a plug-in says of itself in numbers.

#include "check/rows.h"
#include "check/vst_subject.h"

#include <vector>

namespace {

void numbers(trial& running) {
    const vst_subject asked(running);
    const AEffect& record = asked.record();
    running.expect(record.numPrograms >= 0, "it has a negative number of programs");
    running.expect(record.initialDelay >= 0, "its delay is negative");
    running.expect(!asked.has(effFlagsCanReplacing) || record.processReplacing,
                   "it claims to process single precision and has no function for it");
    running.expect(!asked.has(effFlagsCanDoubleReplacing) || record.processDoubleReplacing,
                   "it claims to process double precision and has no function for it");
    running.prefer(asked.has(effFlagsCanReplacing), "it does not process single precision");
    running.prefer(record.uniqueID != 0, "its identity is 0, so hosts cannot tell it from others");
    running.prefer(asked.ask(effGetVstVersion) == kVstVersion, "it does not say version 2.4");
    const bool is_category_synth = asked.ask(effGetPlugCategory) == kPlugCategSynth;
    running.prefer(is_category_synth == asked.has(effFlagsIsSynth),
                   "flag and category disagree whether it is an instrument");
    char ability[] = "receiveVstMidiEvent";
    running.prefer(!asked.has(effFlagsIsSynth) || asked.ask(effCanDo, 0, 0, ability) == 1,
                   "an instrument that does not say that it receives MIDI gets none in some hosts");
}

/// Hosts read it once.
void stays(trial& running) {
    long nb_changes_told = 0;
    vst_subject played(running, [&](const host_call& call) {
        nb_changes_told += call.opcode == audioMasterIOChanged;
    });
    const AEffect before = played.record();
    played.prepare(96000, 333);
    const AEffect& after = played.record();
    running.expect(before.numParams == after.numParams && before.numPrograms == after.numPrograms
                       && before.uniqueID == after.uniqueID && before.flags == after.flags
                       && before.object == after.object,
                   "it changes its record when it is set up");
    running.expect(
        nb_changes_told > 0
            || (before.numInputs == after.numInputs && before.numOutputs == after.numOutputs),
        "it changes its channels and does not tell its host");
}

template <typename Sample, typename Function>
void process(AEffect& record, Function* p_function) {
    if (!p_function)
        throw row_end{verdict::failed, "a pointer of its record is null, which old hosts call"};
    std::vector<Sample> silence(usual_block), sound(usual_block);
    std::vector<Sample*> inputs(static_cast<std::size_t>(record.numInputs), silence.data());
    std::vector<Sample*> outputs(static_cast<std::size_t>(record.numOutputs), sound.data());
    p_function(&record, inputs.data(), outputs.data(), usual_block);
}

/// Old hosts call every pointer of the record without looking at the flags.
void pointers(trial& running) {
    const vst_subject called(running, usual_rate, usual_block);
    AEffect& record = called.record();
    process<float>(record, record.__processDeprecated);
    process<float>(record, record.processReplacing);
    process<double>(record, record.processDoubleReplacing);
}

} // namespace

table record_rows() {
    return only(plugin_format::vst, {{"record/numbers", demand::interface, numbers},
                                     {"record/stays", demand::interface, stays},
                                     {"record/pointers", demand::hosts, pointers}});
}
