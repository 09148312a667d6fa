/// The door of the library: its one exported object, and the factories behind it.

#include "clap/lookup.h"
#include "clap/plugin.h"
#include "clap/presets.h"

#include <string_view>

namespace {

std::uint32_t get_plugin_count(const clap_plugin_factory*) { return 1; }

const clap_plugin_descriptor* get_plugin_descriptor(const clap_plugin_factory*,
                                                    std::uint32_t index) {
    return index == 0 ? &clap_descriptor : nullptr;
}

const clap_plugin* create_plugin(const clap_plugin_factory*, const clap_host* host,
                                 const char* plugin_id) {
    if (!host || !plugin_id || std::string_view(plugin_id) != clap_descriptor.id)
        return nullptr;
    return &(new clap_instrument(host))->interface; // destroy frees it
}

const clap_plugin_factory factory{get_plugin_count, get_plugin_descriptor, create_plugin};

// The library has nothing to set up and nothing to give back: hosts may ask for it as often, and on
// as many threads, as they like.
bool init(const char*) { return true; }

void deinit() {}

const void* get_factory(const char* factory_id) {
    static constexpr clap_offer factories[] = {
        {clap_plugin_factory_id, &factory},
        {clap_preset_discovery_factory_id, &clap_presets},
        {clap_preset_discovery_factory_draft_id, &clap_presets},
    };
    return clap_look_up(factories, factory_id);
}

} // namespace

extern "C" __attribute__((visibility("default"))) const clap_plugin_entry clap_entry;

const clap_plugin_entry clap_entry{clap_interface_version, init, deinit, get_factory};
