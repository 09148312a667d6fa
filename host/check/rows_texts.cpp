/// Texts that a plug-in writes into its host's memory.

#include "check/rows.h"
#include "check/vst_subject.h"

#include <algorithm>
#include <limits>

namespace {

enum class owner { plugin, program, parameter };

struct text_case {
    const char* name;
    VstInt32 opcode;
    owner of;
    std::size_t published; ///< bytes of it, the zero included: more is a warning
    std::size_t given;     ///< bytes that hosts have: more is a failure
};

/// Hosts that had no more than the published 8 bytes for a parameter's texts would crash with half
/// of all plug-ins.
constexpr text_case cases[]{
    {"texts/effect name", effGetEffectName, owner::plugin, 32, 64},
    {"texts/vendor", effGetVendorString, owner::plugin, 64, 64},
    {"texts/product", effGetProductString, owner::plugin, 64, 64},
    {"texts/program name", effGetProgramName, owner::plugin, 24, 64},
    {"texts/program names by index", effGetProgramNameIndexed, owner::program, 24, 64},
    {"texts/parameter names", effGetParamName, owner::parameter, 8, 64},
    {"texts/parameter labels", effGetParamLabel, owner::parameter, 8, 64},
    {"texts/parameter displays", effGetParamDisplay, owner::parameter, 8, 64}};

constexpr std::size_t most = 4096; ///< more is a crash
constexpr VstInt32 max_indices = 512;

/// Bytes that it wrote, from the first to the last.
std::size_t nb_written(const guarded_memory& memory) {
    std::size_t nb = memory.size();
    while (nb > 0 && memory.data()[nb - 1] == guarded_memory::untouched)
        --nb;
    return nb;
}

/// The text that takes the most memory.
struct longest_text {
    std::size_t nb_bytes = 0;
    std::string text{};
};

void judge_text(trial& running, const vst_subject& asked, const text_case& judged, VstInt32 index,
                longest_text& longest) {
    running.doing("opcode " + std::to_string(judged.opcode) + ", index " + std::to_string(index));
    const guarded_memory memory(most);
    const VstIntPtr answer = asked.ask(judged.opcode, index, 0, memory.data());
    running.expect(memory.front_holds(), "it writes in front of the memory");
    if (memory.is_untouched()) {
        running.prefer(answer == 0, "it says that it wrote a text and did not");
        return;
    }
    const std::size_t nb = nb_written(memory);
    running.expect(memory.text().has_value() && memory.text()->size() < nb,
                   "its text has no zero at its end");
    running.expect(nb <= judged.given, "it writes " + std::to_string(nb)
                                           + " bytes, where hosts have "
                                           + std::to_string(judged.given));
    if (nb > longest.nb_bytes)
        longest = {nb, std::string{*memory.text()}};
}

VstInt32 nb_indices(const vst_subject& asked, owner of) {
    switch (of) {
    case owner::program:
        return std::min(asked.record().numPrograms, max_indices);
    case owner::parameter:
        return std::min(asked.record().numParams, max_indices);
    default:
        return 1;
    }
}

/// Displays at many values of each parameter, the others once.
void judge_texts(trial& running, const text_case& judged) {
    const vst_subject asked(running);
    const VstInt32 nb = nb_indices(asked, judged.of);
    if (nb == 0)
        running.skip("it has none");
    longest_text longest;
    for (VstInt32 index = 0; index < nb; ++index) {
        if (judged.opcode != effGetParamDisplay) {
            judge_text(running, asked, judged, index, longest);
            continue;
        }
        for (const float value : {0.0f, 1e-30f, 0.001f, 1.0f / 3, 0.5f, 0.999f, 1.0f}) {
            asked.set(index, value);
            judge_text(running, asked, judged, index, longest);
        }
    }
    running.doing("");
    running.prefer(longest.nb_bytes <= judged.published,
                   "\"" + longest.text + "\" takes " + std::to_string(longest.nb_bytes)
                       + " bytes of memory, and the published length is "
                       + std::to_string(judged.published));
}

void programs(trial& running) {
    const vst_subject asked(running);
    const VstInt32 nb = nb_indices(asked, owner::program);
    if (nb == 0)
        running.skip("it has no programs");
    for (VstInt32 index = 0; index < nb; ++index) {
        running.doing("program " + std::to_string(index));
        asked.ask(effSetProgram, 0, index);
        running.expect(asked.ask(effGetProgram) == index, "another program is chosen");
    }
    running.doing("");
}

} // namespace

table text_rows() {
    table rows;
    for (const text_case& judged : cases)
        rows.push_back({judged.name, demand::interface,
                        [&judged](trial& running) { judge_texts(running, judged); }});
    rows.push_back({"programs/choice", demand::interface, programs});
    return only(plugin_format::vst, std::move(rows));
}
