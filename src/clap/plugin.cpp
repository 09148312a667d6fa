#include "clap/plugin.h"

#include "clap/lookup.h"
#include "clap/parameters.h"
#include "clap/ports.h"
#include "clap/presets.h"
#include "clap/process.h"
#include "clap/remote_controls.h"
#include "clap/state.h"

#include <algorithm>
#include <cmath>

namespace {

/// Until all that rings on is below -90 dBFS: with every key released at once, every stop on and
/// both volumes at 1, the stop Bright, the longest, takes up to 2.02 s at the rates that have
/// filters of their own. At any other the filters are those of 48 kHz, whose 2.01 s there are 96256
/// frames.
constexpr double tail_seconds = 2.25;
constexpr int tail_least_rate = 48000; ///< Hz

std::uint32_t tail_frames(int sampling_rate) {
    return static_cast<std::uint32_t>(
        std::ceil(tail_seconds * std::max(sampling_rate, tail_least_rate)));
}

bool init(const clap_plugin*) { return true; }

void destroy(const clap_plugin* plugin) { delete &clap_instrument_of(plugin); }

void reset(const clap_plugin* plugin) noexcept NONBLOCKING {
    clap_instrument& self = clap_instrument_of(plugin);
    player_silence(&self.played.playing());
    self.sounding.clear();
}

/// A rate that the engine does not know is silence. What sounded before has no voice any more.
bool activate(const clap_plugin* plugin, double sample_rate, std::uint32_t, std::uint32_t) {
    clap_instrument& self = clap_instrument_of(plugin);
    self.played.set_sampling_rate(sample_rate);
    self.tail_long = tail_frames(self.played.playing().p_organ->sampling_rate);
    reset(plugin);
    return true;
}

void deactivate(const clap_plugin*) {}

bool start_processing(const clap_plugin*) noexcept NONBLOCKING { return true; }

void stop_processing(const clap_plugin*) noexcept NONBLOCKING {}

void on_main_thread(const clap_plugin*) {}

const clap_plugin_tail tail{.get = [](const clap_plugin* plugin) noexcept NONBLOCKING {
    return clap_instrument_of(plugin).tail_long;
}};

const void* get_extension(const clap_plugin*, const char* id) {
    static constexpr clap_offer extensions[] = {
        {clap_audio_ports_id, &clap_audio_ports},
        {clap_gui_id, &clap_gui},
        {clap_note_ports_id, &clap_note_ports},
        {clap_params_id, &clap_parameters},
        {clap_preset_load_id, &clap_preset_loading},
        {clap_preset_load_draft_id, &clap_preset_loading},
        {clap_remote_controls_id, &clap_remote_controls},
        {clap_remote_controls_draft_id, &clap_remote_controls},
        {clap_state_id, &clap_state},
        {clap_tail_id, &tail},
        {clap_timer_support_id, &clap_timer},
        {clap_voice_info_id, &clap_voices},
    };
    return clap_look_up(extensions, id);
}

const char* const features[] = {"instrument", "synthesizer", "stereo", nullptr};

} // namespace

const clap_plugin_descriptor clap_descriptor{.clap_version = clap_interface_version,
                                             .id = "example.quenmar.tindelwax",
                                             .name = "Tindelwax",
                                             .vendor = "Quenmar",
                                             .url = "",
                                             .manual_url = "",
                                             .support_url = "",
                                             .version = TINDELWAX_VERSION,
                                             .description =
                                                 "An electronic organ with a split bass section",
                                             .features = features};

clap_instrument::clap_instrument(const clap_host* host) : interface {
    .desc = &clap_descriptor, .plugin_data = this, .init = init, .destroy = destroy,
    .activate = activate, .deactivate = deactivate, .start_processing = start_processing,
    .stop_processing = stop_processing, .reset = reset, .process = clap_process_block,
    .get_extension = get_extension, .on_main_thread = on_main_thread
}, p_host(host) {
}
