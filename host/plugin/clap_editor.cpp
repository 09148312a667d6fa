#include "plugin/clap_editor.h"

#include <algorithm>
#include <utility>

void clap_editor::attach(const clap_plugin* plugin) {
    plugin_ = plugin;
    const auto* gui =
        static_cast<const clap_plugin_gui*>(plugin->get_extension(plugin, clap_gui_id));
    if (gui && gui->is_api_supported(plugin, clap_system_window_api, false))
        gui_ = gui;
}

/// Shows nothing yet, but from here on the plug-in tells its size.
bool clap_editor::create() {
    if (!is_created_ && gui_)
        is_created_ = gui_->create(plugin_, clap_system_window_api, false);
    return is_created_;
}

bool clap_editor::set_scale(double scale) { return create() && gui_->set_scale(plugin_, scale); }

editor_extent clap_editor::size() {
    std::uint32_t width = 0, height = 0;
    if (!create() || !gui_->get_size(plugin_, &width, &height))
        return {};
    return {static_cast<int>(width), static_cast<int>(height)};
}

bool clap_editor::open(void* window) {
    clap_window parent{clap_system_window_api, {}};
    parent.ptr = window;
    if (create() && gui_->set_parent(plugin_, &parent) && gui_->show(plugin_))
        return true;
    close();
    return false;
}

void clap_editor::close() {
    if (std::exchange(is_created_, false))
        gui_->destroy(plugin_);
}

void clap_editor::idle() {
    if (wants_turn_.exchange(false))
        plugin_->on_main_thread(plugin_);
    for (const clap_id id : take_due()) {
        const auto* support = static_cast<const clap_plugin_timer_support*>(
            plugin_->get_extension(plugin_, clap_timer_support_id));
        if (support && std::ranges::count(timers_, id, &timer::id) > 0) // an earlier one may end it
            support->on_timer(plugin_, id);
    }
}

std::vector<clap_id> clap_editor::take_due() {
    const auto now = clock::now();
    std::vector<clap_id> due;
    for (timer& each : timers_)
        if (each.due <= now) {
            each.due = now + each.period;
            due.push_back(each.id);
        }
    return due;
}

clap_editor& clap_editor::of(const clap_host* host) {
    return *static_cast<clap_editor*>(host->host_data);
}

const clap_host_timer_support clap_editor::timer_support{
    .register_timer =
        [](const clap_host* host, std::uint32_t period_ms, clap_id* timer_id) {
            clap_editor& self = of(host);
            *timer_id = self.nb_timers_so_far_++;
            self.timers_.push_back({*timer_id, std::chrono::milliseconds{period_ms}, clock::now()});
            return true;
        },
    .unregister_timer =
        [](const clap_host* host, clap_id timer_id) {
            return std::erase_if(of(host).timers_,
                                 [timer_id](const timer& each) { return each.id == timer_id; })
                   > 0;
        }};

void clap_editor::request_callback(const clap_host* host) { of(host).wants_turn_ = true; }
