#include "plugin/effect.h"

#include "failure/failure.h"

#include <utility>

namespace {

// A record that says more is no record.
constexpr int max_channels = 1024;
constexpr int max_parameters = 65536;

bool is_within(VstInt32 number, int max) { return number >= 0 && number <= max; }

/// Why it cannot be one; empty if it can.
std::string flaw(const AEffect* p_record) {
    if (!p_record)
        return "refuses to start: its entry point answers nothing";
    if (p_record->magic != kEffectMagic || !p_record->dispatcher || !p_record->setParameter
        || !p_record->getParameter)
        return "is broken: its entry point answers something else than a record";
    if (!is_within(p_record->numInputs, max_channels)
        || !is_within(p_record->numOutputs, max_channels))
        return "claims an impossible number of channels";
    if (!is_within(p_record->numParams, max_parameters))
        return "claims an impossible number of parameters";
    return {};
}

} // namespace

VstPluginMainProc plugin_entry(const library& its_library) {
    void* address = its_library.find("main");
    return reinterpret_cast<VstPluginMainProc>(address ? address
                                                       : its_library.find("VSTPluginMain"));
}

effect::effect(const std::filesystem::path& file, host_answers answers, library::in_the_end then)
    : library_{file, then}, answers_{std::move(answers)} {
    const VstPluginMainProc entry = plugin_entry(library_);
    if (!entry)
        throw failure{exit_misused,
                      file.string() + " is no plug-in for this system: "
                          + (library_.error.empty() ? "it exports neither main nor VSTPluginMain"
                                                    : library_.error)};
    AEffect* const p_record = effect_create(entry, answers_);
    if (const std::string what = flaw(p_record); !what.empty())
        throw failure{exit_failed, file.string() + " " + what};
    p_record_ = p_record;
    ask(effOpen);
}

effect::~effect() {
    if (p_record_)
        close();
}

VstIntPtr effect::close() {
    AEffect* const p_closing = std::exchange(p_record_, nullptr);
    return p_closing->dispatcher(p_closing, effClose, 0, 0, nullptr, 0);
}
