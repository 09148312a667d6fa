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

panel_shown::panel_shown(trial& running, subject::listener heard_by)
    : running_{running}, plugin_(running, std::move(heard_by), library::in_the_end::stays) {
    if (!plugin_.has(effFlagsHasEditor))
        running.skip("it has no panel");
    require_display(running);
    plugin_.prepare(usual_rate, usual_block);
    ERect* p_size = nullptr;
    plugin_.ask(effEditGetRect, 0, 0, &p_size);
    width_ = p_size ? p_size->right - p_size->left : 640;
    height_ = p_size ? p_size->bottom - p_size->top : 480;
    p_window_ = std::make_unique<editor_window>(width_, height_, window_place{40, 30});
    if (!p_window_->handle())
        running.skip("no window can be shown; run it where there is a display");
    p_window_->take_keys();
    open();
}

panel_shown::~panel_shown() {
    if (!plugin_.is_closed())
        close();
}

void panel_shown::open() {
    running_.expect(plugin_.ask(effEditOpen, 0, 0, p_window_->handle()) != 0,
                    "it does not open in a window");
    is_open_ = true;
}

void panel_shown::close() {
    if (is_open_)
        plugin_.ask(effEditClose);
    is_open_ = false;
    p_window_->handle_messages();
}

/// Hosts call some 30 times a second; panels that count on their own timers get a little time.
void panel_shown::idle(int nb_times) {
    for (int i = 0; i < nb_times; ++i) {
        p_window_->handle_messages();
        if (is_open_)
            plugin_.ask(effEditIdle);
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
