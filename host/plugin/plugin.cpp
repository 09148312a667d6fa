#include "plugin/plugin.h"

#include <algorithm>
#include <utility>

void plugin::fail(const std::string& what) const {
    throw failure{exit_failed, file_.string() + " " + what + next_step_};
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
