#include "platform/trial.h"
#include "plugin/plugin.h"

namespace {

constexpr std::chrono::seconds trial_limit{20};
constexpr const char* next_step = "; choose another plug-in with --plugin FILE";

} // namespace

std::unique_ptr<plugin> plugin_load(const std::filesystem::path& file) {
    try {
        auto loaded = plugin_open(file);
        loaded->advise(next_step);
        return loaded;
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
