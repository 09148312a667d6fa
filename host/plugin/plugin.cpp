#include "plugin/plugin.h"

#include "platform/trial.h"
#include "plugin/loaded_clap.h"
#include "plugin/lv2_plugin.h"
#include "plugin/vst_plugin.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::chrono::seconds trial_limit{20};
constexpr const char* next_step = "; choose another plug-in with --plugin FILE";

} // namespace

void plugin::fail(const std::string& what) const {
    throw failure{exit_failed, file_.string() + " " + what + next_step};
}

int plugin::nb_channels() const { return std::min(nb_outputs(), 2); }

std::string plugin::why_silent() const { return nb_outputs() == 0 ? "has no audio output" : ""; }

void plugin::require_sound() const {
    if (const std::string why = why_silent(); !why.empty())
        fail(why);
}

void plugin::prepare(double rate_hz, int block_frames) {
    rate_hz_ = rate_hz;
    block_frames_ = block_frames;
    set_up();
}

void plugin::start(host_activity for_what) {
    inputs_.resize(nb_inputs(), block_frames_);
    outputs_.resize(nb_outputs(), block_frames_);
    resume(for_what);
    runs_ = true;
}

void plugin::stop() {
    if (std::exchange(runs_, false))
        suspend();
}

std::span<const float> plugin::output(int channel) const {
    return outputs_.samples[static_cast<std::size_t>(channel)];
}

void plugin::channels::resize(int nb_channels, int nb_frames) {
    samples.assign(static_cast<std::size_t>(nb_channels),
                   std::vector<float>(static_cast<std::size_t>(nb_frames)));
    pointers.clear();
    for (auto& channel : samples)
        pointers.push_back(channel.data());
}

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
