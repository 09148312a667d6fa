#include "clap/remote_controls.h"

#include "clap/plugin.h"
#include "clap/text.h"

#include <algorithm>
#include <string>

namespace {

const control& registry(const clap_plugin* plugin) {
    return *clap_instrument_of(plugin).played.shown().p_control;
}

std::uint32_t count(const clap_plugin* plugin) {
    constexpr auto page_size = static_cast<std::uint32_t>(CLAP_REMOTE_CONTROLS_COUNT);
    return (registry(plugin).nb_parameters + page_size - 1) / page_size;
}

bool get(const clap_plugin* plugin, std::uint32_t page_index, clap_remote_controls_page* page) {
    if (page_index >= count(plugin) || !page)
        return false;
    const auto& parameters = registry(plugin).parameters;
    const std::size_t first = page_index * CLAP_REMOTE_CONTROLS_COUNT;
    const std::size_t end = std::min(first + CLAP_REMOTE_CONTROLS_COUNT, parameters.size());
    *page = {
        .section_name{}, .page_id = page_index, .page_name{}, .param_ids{}, .is_for_preset = false};
    clap_write_text(page->section_name, registry(plugin).name);
    clap_write_text(page->page_name, parameters[first]->name + " - " + parameters[end - 1]->name);
    for (std::size_t i = 0; i < CLAP_REMOTE_CONTROLS_COUNT; ++i)
        page->param_ids[i] = first + i < end ? static_cast<clap_id>(first + i) : CLAP_INVALID_ID;
    return true;
}

} // namespace

const clap_plugin_remote_controls clap_remote_controls{count, get};
