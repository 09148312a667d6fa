#include "plugin/plugin.h"

#include "platform/trial.h"
#include "plugin/loaded_clap.h"
#include "plugin/lv2_plugin.h"
#include "plugin/vst_plugin.h"

#include <algorithm>

namespace {

constexpr std::chrono::seconds trial_limit{20};
constexpr const char* next_step = "; choose another plug-in with --plugin FILE";

} // namespace

void plugin::fail(const std::string& what) const {
    throw failure{exit_failed, file_.string() + " " + what + next_step};
}

int plugin::nb_channels() const { return std::min(nb_outputs(), 2); }

std::unique_ptr<plugin> plugin_load(const std::filesystem::path& file) {
    try {
        if (std::filesystem::exists(file / "manifest.ttl")) // an LV2 bundle
            return std::make_unique<lv2_plugin>(file);
        if (file.extension() == ".clap")
            return std::make_unique<loaded_clap>(file);
        return std::make_unique<vst_plugin>(file);
    } catch (const failure& refusal) {
        throw failure{refusal.status, std::string{refusal.what()} + next_step};
    }
}

void plugin_try(const std::filesystem::path& file, const std::function<void(plugin&)>& rehearse) {
    std::error_code error;
    if (!std::filesystem::exists(file, error))
        throw failure{exit_misused, file.string() + " is missing" + next_step};
    const auto load_and_close = [&] { rehearse(*plugin_load(file)); };
    const std::string complaint = trial_run(file.string(), load_and_close, trial_limit);
    if (!complaint.empty())
        throw failure{exit_failed, complaint + next_step};
}
