#include "clap/panel_window.h"

#include "clap/lookup.h"
#include "clap/parameters.h"
#include "clap/plugin.h"

#include <cstdint>
#include <string_view>

namespace {

constexpr std::uint32_t idle_period_ms = 30;

const clap_host_timer_support* timers(const clap_host* host) {
    return clap_host_extension<clap_host_timer_support>(host, clap_timer_support_id);
}

} // namespace

clap_panel_window::clap_panel_window(clap_instrument& shown)
    : instrument_panel(shown.played), instrument(shown) {}

clap_panel_window::~clap_panel_window() { hide(); }

bool clap_panel_window::show() {
    if (is_open())
        return true;
    if (!parent || !open(parent))
        return false;
    timers(instrument.p_host)->register_timer(instrument.p_host, idle_period_ms, &timer);
    idle();
    return true;
}

void clap_panel_window::hide() {
    if (timer != CLAP_INVALID_ID)
        timers(instrument.p_host)->unregister_timer(instrument.p_host, timer);
    timer = CLAP_INVALID_ID;
    close();
}

/// Where the host has taken nothing for long, it reads the values anew.
void clap_panel_window::tell(clap_event_type type, int index, float value) {
    const auto* host = clap_host_extension<clap_host_params>(instrument.p_host, clap_params_id);
    if (!instrument.edits.put({type, static_cast<clap_id>(index), value}))
        clap_tell_of_values(instrument.p_host);
    else if (host)
        host->request_flush(instrument.p_host);
}

void clap_panel_window::beginEdit(int index) { tell(CLAP_EVENT_PARAM_GESTURE_BEGIN, index); }

void clap_panel_window::endEdit(int index) { tell(CLAP_EVENT_PARAM_GESTURE_END, index); }

void clap_panel_window::parameterMoved(int index, float value) {
    tell(CLAP_EVENT_PARAM_VALUE, index, value);
}

namespace {

clap_panel_window* window_of(const clap_plugin* plugin) {
    return clap_instrument_of(plugin).window.get();
}

/// Embedded in a window of the system, and in nothing else. Without its host's timers the panel
/// would stand still.
bool is_api_supported(const clap_plugin* plugin, const char* api, bool is_floating) {
    return api && std::string_view(api) == clap_system_window_api && !is_floating
           && timers(clap_instrument_of(plugin).p_host);
}

bool get_preferred_api(const clap_plugin*, const char** api, bool* is_floating) {
    *api = clap_system_window_api;
    *is_floating = false;
    return true;
}

bool create(const clap_plugin* plugin, const char* api, bool is_floating) {
    clap_instrument& self = clap_instrument_of(plugin);
    if (self.window || !is_api_supported(plugin, api, is_floating))
        return false;
    self.window = std::make_unique<clap_panel_window>(self);
    return true;
}

void destroy(const clap_plugin* plugin) { clap_instrument_of(plugin).window.reset(); }

bool set_scale(const clap_plugin* plugin, double scale) {
    return window_of(plugin) && window_of(plugin)->set_scale(scale);
}

bool get_size(const clap_plugin* plugin, std::uint32_t* width, std::uint32_t* height) {
    if (!window_of(plugin))
        return false;
    *width = static_cast<std::uint32_t>(window_of(plugin)->width());
    *height = static_cast<std::uint32_t>(window_of(plugin)->height());
    return true;
}

bool set_size(const clap_plugin* plugin, std::uint32_t width, std::uint32_t height) {
    std::uint32_t own_width = 0, own_height = 0;
    return get_size(plugin, &own_width, &own_height) && width == own_width && height == own_height;
}

bool set_parent(const clap_plugin* plugin, const clap_window* window) {
    if (!window_of(plugin) || !window || !is_api_supported(plugin, window->api, false))
        return false;
    window_of(plugin)->set_parent(window->ptr);
    return true;
}

bool show(const clap_plugin* plugin) { return window_of(plugin) && window_of(plugin)->show(); }

bool hide(const clap_plugin* plugin) {
    if (window_of(plugin))
        window_of(plugin)->hide();
    return window_of(plugin);
}

} // namespace

const clap_plugin_gui clap_gui{
    .is_api_supported = is_api_supported,
    .get_preferred_api = get_preferred_api,
    .create = create,
    .destroy = destroy,
    .set_scale = set_scale,
    .get_size = get_size,
    .can_resize = [](const clap_plugin*) { return false; },
    .get_resize_hints = [](const clap_plugin*, clap_gui_resize_hints*) { return false; },
    .adjust_size = get_size,
    .set_size = set_size,
    .set_parent = set_parent,
    .set_transient = [](const clap_plugin*, const clap_window*) { return false; },
    .suggest_title = [](const clap_plugin*, const char*) {},
    .show = show,
    .hide = hide};

const clap_plugin_timer_support clap_timer{.on_timer = [](const clap_plugin* plugin, clap_id) {
    if (window_of(plugin))
        window_of(plugin)->idle();
}};
