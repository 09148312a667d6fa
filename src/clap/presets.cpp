#include "clap/presets.h"

#include "clap/lookup.h"
#include "clap/parameters.h"
#include "clap/plugin.h"
#include "factory_registrations/factory_registrations.h"
#include "instrument/registration.h"

#include <optional>
#include <string_view>

namespace {

using indexer = clap_preset_discovery_indexer;
using provider = clap_preset_discovery_provider;
using provider_descriptor = clap_preset_discovery_provider_descriptor;
using receiver = clap_preset_discovery_metadata_receiver;

constexpr provider_descriptor descriptor{.clap_version = clap_interface_version,
                                         .id = "example.quenmar.tindelwax.registrations",
                                         .name = "Tindelwax registrations",
                                         .vendor = "Quenmar"};

/// The object behind the record that the host holds.
struct registration_provider {
    explicit registration_provider(const indexer* p_its_indexer);

    provider interface;
    const indexer* p_indexer; ///< outlives this
    instrument described{};   ///< whose registry knows what registrations name
};

registration_provider& provider_of(const provider* p_provider) {
    return *static_cast<registration_provider*>(p_provider->provider_data);
}

/// All registrations are in one place: the library.
bool init(const provider* p_provider) {
    const indexer* const p_indexer = provider_of(p_provider).p_indexer;
    const clap_preset_discovery_location inside{.flags = CLAP_PRESET_DISCOVERY_IS_FACTORY_CONTENT,
                                                .name = descriptor.name,
                                                .kind = CLAP_PRESET_DISCOVERY_LOCATION_PLUGIN,
                                                .location = nullptr};
    return p_indexer->declare_location(p_indexer, &inside);
}

bool get_metadata(const provider* p_provider, std::uint32_t location_kind, const char*,
                  const receiver* told) {
    if (location_kind != CLAP_PRESET_DISCOVERY_LOCATION_PLUGIN) {
        told->on_error(told, 0, "Registrations are in the library alone");
        return false;
    }
    const control& registry = *provider_of(p_provider).described.shown().p_control;
    const clap_universal_plugin_id loader{.abi = "clap", .id = clap_descriptor.id};
    for (const auto& [key, text] : factory_registrations) {
        const auto read = registration_read(text, registry);
        if (!read)
            continue;
        if (!told->begin_preset(told, read->title.c_str(), key))
            break;
        told->add_plugin_id(told, &loader);
        told->set_description(told, read->comment.c_str());
    }
    return true;
}

registration_provider::registration_provider(const indexer* p_its_indexer) : interface {
    .desc = &descriptor, .provider_data = this, .init = init,
    .destroy = [](const provider* ended) { delete &provider_of(ended); },
    .get_metadata = get_metadata,
    .get_extension = [](const provider*, const char*) -> const void* { return nullptr; }
}, p_indexer(p_its_indexer) {
}

const provider* create(const clap_preset_discovery_factory*, const indexer* p_indexer,
                       const char* provider_id) {
    if (!p_indexer || !provider_id || std::string_view(provider_id) != descriptor.id)
        return nullptr;
    return &(new registration_provider(p_indexer))->interface; // destroy frees it
}

/// Null where the host does not listen.
const clap_host_preset_load* listener(const clap_host* host) {
    using listening = clap_host_preset_load;
    const auto* const found = clap_host_extension<listening>(host, clap_preset_load_id);
    return found ? found : clap_host_extension<listening>(host, clap_preset_load_draft_id);
}

std::optional<registration> find(std::uint32_t location_kind, const char* load_key,
                                 const control& registry) {
    if (location_kind == CLAP_PRESET_DISCOVERY_LOCATION_PLUGIN && load_key)
        for (const auto& [key, text] : factory_registrations)
            if (std::string_view(key) == load_key)
                return registration_read(text, registry);
    return std::nullopt;
}

bool from_location(const clap_plugin* plugin, std::uint32_t location_kind, const char* location,
                   const char* load_key) {
    clap_instrument& self = clap_instrument_of(plugin);
    const clap_host* const host = self.p_host;
    const clap_host_preset_load* const told = listener(host);
    control& registry = *self.played.shown().p_control;
    const auto asked = find(location_kind, load_key, registry);
    if (!asked) {
        if (told)
            told->on_error(host, location_kind, location, load_key, 0,
                           "There is no such registration");
        return false;
    }
    for (const auto& [index, value] : asked->settings)
        control_set_parameter(&registry, index, value);
    clap_tell_of_values(host);
    if (told)
        told->loaded(host, location_kind, location, load_key);
    return true;
}

} // namespace

const clap_preset_discovery_factory clap_presets{
    .count = [](const clap_preset_discovery_factory*) { return 1u; },
    .get_descriptor = [](const clap_preset_discovery_factory*,
                         std::uint32_t index) { return index == 0 ? &descriptor : nullptr; },
    .create = create};
const clap_plugin_preset_load clap_preset_loading{from_location};
