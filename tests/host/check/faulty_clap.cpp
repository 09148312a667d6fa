// The organ as a CLAP plug-in with a port more each way, without faults but for the one that
// TINDELWAX_TEST_FAULT names.

#include "clap/interface.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <string>
#include <utility>

namespace {

const std::string fault = [] {
    const char* p_name = std::getenv("TINDELWAX_TEST_FAULT");
    return p_name ? p_name : "";
}();

const clap_plugin_entry& organ =
    *static_cast<const clap_plugin_entry*>(dlsym(dlopen(TEST_CLAP, RTLD_NOW), "clap_entry"));
clap_plugin_factory factory; // of plug-ins that are records of ours with the organ's data
clap_plugin whole;           // a plug-in as the organ has it
clap_plugin_params params;
clap_plugin_state state;

const clap_plugin_factory& whole_factory() {
    return *static_cast<const clap_plugin_factory*>(organ.get_factory(clap_plugin_factory_id));
}

template <typename Extension>
const Extension* whole_extension(const clap_plugin* plugin, const char* id) {
    return static_cast<const Extension*>(whole.get_extension(plugin, id));
}

bool get_info(const clap_plugin* plugin, std::uint32_t index, clap_param_info* info) {
    const bool is_there =
        whole_extension<clap_plugin_params>(plugin, clap_params_id)->get_info(plugin, index, info);
    if (fault == "default")
        info->default_value = info->max_value + 1;
    return is_there;
}

bool get_port(const clap_plugin* plugin, std::uint32_t index, bool is_input,
              clap_audio_port_info* info) {
    const std::uint32_t nb_own = is_input ? 0 : 1;
    *info = {.id = 9,
             .name = "More",
             .flags = 0,
             .channel_count = 1,
             .port_type = nullptr,
             .in_place_pair = CLAP_INVALID_ID};
    return index == nb_own
           || whole_extension<clap_plugin_audio_ports>(plugin, clap_audio_ports_id)
                  ->get(plugin, index, is_input, info);
}

constexpr clap_plugin_audio_ports ports{
    .count = [](const clap_plugin*, bool is_input) { return is_input ? 1u : 2u; }, .get = get_port};

bool load_at_once(const clap_plugin* plugin, const clap_istream* stream) {
    static char bytes[4096];
    static std::int64_t nb_bytes;
    nb_bytes = stream->read(stream, bytes, sizeof bytes);
    const clap_istream rest{nullptr, [](const clap_istream*, void* to, std::uint64_t) {
                                std::memcpy(to, bytes, static_cast<std::size_t>(nb_bytes));
                                return std::exchange(nb_bytes, std::int64_t{0});
                            }};
    return whole_extension<clap_plugin_state>(plugin, clap_state_id)->load(plugin, &rest);
}

const void* get_extension(const clap_plugin* plugin, const char* id) {
    if (std::strcmp(id, clap_params_id) == 0) {
        params = *whole_extension<clap_plugin_params>(plugin, id);
        params.get_info = get_info;
        if (fault == "texts")
            params.text_to_value = [](const clap_plugin*, clap_id, const char*, double* value) {
                *value = 0;
                return true;
            };
        if (fault == "deaf_flush")
            params.flush = [](const clap_plugin*, const clap_input_events*,
                              const clap_output_events*) noexcept NONBLOCKING {};
        return &params;
    }
    if (std::strcmp(id, clap_audio_ports_id) == 0)
        return &ports;
    if (std::strcmp(id, clap_state_id) == 0) {
        state = *whole_extension<clap_plugin_state>(plugin, id);
        if (fault == "large_reads")
            state.load = load_at_once;
        if (fault == "any_state")
            state.load = [](const clap_plugin*, const clap_istream*) { return true; };
        return &state;
    }
    return fault == "any_extension" ? &state : whole.get_extension(plugin, id);
}

clap_process_status process(const clap_plugin* plugin,
                            const clap_process* block) noexcept NONBLOCKING {
    clap_process seen = *block;
    std::copy_n(block->audio_inputs[0].data32[0], block->frames_count,
                block->audio_outputs[1].data32[0]);
    const clap_input_events none{nullptr,
                                 [](const clap_input_events*) noexcept NONBLOCKING { return 0u; },
                                 block->in_events->get};
    for (std::uint32_t i = 0; i < block->in_events->size(block->in_events); ++i) {
        const clap_event_header* event = block->in_events->get(block->in_events, i);
        if (fault == "no_automation" && event->type == CLAP_EVENT_PARAM_VALUE)
            seen.in_events = &none;
        if (fault == "no_wildcards" && event->type == CLAP_EVENT_NOTE_OFF
            && reinterpret_cast<const clap_event_note*>(event)->key < 0)
            std::raise(SIGSEGV);
    }
    if (fault == "transport" && block->transport)
        std::raise(SIGSEGV);
    const clap_process_status status = whole.process(plugin, &seen);
    return fault == "early_sleep" ? CLAP_PROCESS_SLEEP : status;
}

const clap_plugin* create(const clap_plugin_factory*, const clap_host* host, const char* id) {
    const clap_plugin* const made = whole_factory().create_plugin(
        &whole_factory(), host, fault == "any_id" ? whole.desc->id : id);
    if (!made)
        return nullptr;
    whole = *made;
    auto& changed = *const_cast<clap_plugin*>(made);
    changed.get_extension = get_extension;
    changed.process = process;
    if (fault == "no_reset")
        changed.reset = [](const clap_plugin*) noexcept NONBLOCKING {};
    if (fault == "odd_rates")
        changed.activate = [](const clap_plugin* plugin, double rate, std::uint32_t least,
                              std::uint32_t most) {
            return rate == 48000 && whole.activate(plugin, rate, least, most);
        };
    return made;
}

const void* get_factory(const char* id) {
    if (std::strcmp(id, clap_plugin_factory_id) != 0)
        return organ.get_factory(id);
    factory = whole_factory();
    factory.create_plugin = create;
    return &factory;
}

} // namespace

extern "C" __attribute__((visibility("default")))
const clap_plugin_entry clap_entry{organ.clap_version, organ.init, organ.deinit, get_factory};
