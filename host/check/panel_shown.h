#pragma once
/// A plug-in's panel in a host's window. Functions are [ui]. The library stays in memory: toolkits
/// leave threads behind, and how a library goes is judged elsewhere.

#include "check/subject.h"
#include "platform/editor_window.h"

#include <memory>

/// Skips the row where there is no display. Panels may look for one whenever they are asked.
void require_display(const trial& running);

class panel_shown {
public:
    /// Opens it; skips the row where there is no panel or no display.
    explicit panel_shown(trial& running);

    void open();
    void close(); ///< unless it is
    void idle(int nb_times);

    /// Idles until it holds, for at most a second; returns whether it does. Panels may have an
    /// event thread of their own, which takes its time.
    bool idle_until(const std::function<bool()>& holds);

    [[nodiscard]] subject& plugin() { return plugin_; }
    [[nodiscard]] editor_window& window() { return *p_window_; }
    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }

    ~panel_shown();
    panel_shown(const panel_shown&) = delete;
    panel_shown& operator=(const panel_shown&) = delete;

private:
    trial& running_;
    subject plugin_;
    int width_ = 0;
    int height_ = 0;
    std::unique_ptr<editor_window> p_window_{};
    bool is_open_ = false;
    bool plays_ = false; ///< silence, but some panels tell of edits in a block
};
