#include "check/panel_shown.h"

#ifndef _WIN32
#include "platform/display.h"
#endif

#include <chrono>
#include <thread>

/// One for the row's process, ended with it. Windows has its own.
void require_display([[maybe_unused]] const trial& running) {
#ifndef _WIN32
    static const auto* const p_unseen = new display{display::choice::unseen};
    if (!p_unseen->error.empty())
        running.skip(p_unseen->error);
#endif
}

panel_shown::panel_shown(trial& running)
    : running_{running}, plugin_(running, library::in_the_end::stays) {
    if (!plugin_.tested().has_editor())
        running.skip("it has no panel");
    require_display(running);
    plugin_.prepare(usual_rate, usual_block);
    const editor_extent told = plugin_.tested().editor_size();
    width_ = told.is_empty() ? 640 : told.width;
    height_ = told.is_empty() ? 480 : told.height;
    p_window_ = std::make_unique<editor_window>(width_, height_, window_place{40, 30});
    if (!p_window_->handle())
        running.skip("no window can be shown; run it where there is a display");
    p_window_->take_keys();
    plays_ = plugin_.tested().why_silent().empty();
    if (plays_)
        plugin_.make_room(usual_block);
    open();
}

panel_shown::~panel_shown() {
    if (!plugin_.is_closed())
        close();
}

void panel_shown::open() {
    running_.expect(plugin_.tested().open_editor(p_window_->handle()),
                    "it does not open in a window");
    is_open_ = true;
}

void panel_shown::close() {
    if (is_open_)
        plugin_.tested().close_editor();
    is_open_ = false;
    p_window_->handle_messages();
}

/// Hosts call some 30 times a second; panels that count on their own timers get a little time.
void panel_shown::idle(int nb_times) {
    for (int i = 0; i < nb_times; ++i) {
        p_window_->handle_messages();
        if (is_open_)
            plugin_.tested().idle_editor();
        if (plays_ && !plugin_.is_closed())
            plugin_.run(usual_block);
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

bool panel_shown::idle_until(const std::function<bool()>& holds) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    while (!holds()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        idle(1);
    }
    return true;
}
