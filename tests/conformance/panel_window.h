#pragma once
/// A host's window for a panel, what the screen shows in it, and the hands of the user before it.

#include "vstgui/cdrawcontext.h"

#include <memory>
#include <string>

class panel_window {
public:
    enum class key { shift, control };

    /// Throws a mismatch where no window can be shown.
    explicit panel_window(CPoint corner_on_screen = {40, 30});
    ~panel_window();
    panel_window(const panel_window&) = delete;
    panel_window& operator=(const panel_window&) = delete;

    [[nodiscard]] void* handle() const; ///< what effEditOpen gets

    void destroy(); ///< as the window's own system does, whatever is in it

    /// Returns "" when the screen shows that in it, else where it differs.
    [[nodiscard]] std::string difference(const CDrawContext& expected);

    /// Windows in it, and what the system still knows of those that were.
    [[nodiscard]] long nb_left();

    /// Whether a key pressed now reaches the host.
    [[nodiscard]] bool gets_keys();

    // What the user does is on the panel's way, or in the system's hands, until the host lets
    // windows handle their messages.

    void move(CPoint on_panel);
    void press();
    void release();
    void click_twice(); ///< fast enough for a double click
    void turn_wheel(int notches);
    void hold(key held, bool down);

    /// As another window takes it, in the middle of a drag.
    void take_mouse_away();
    void give_mouse_back();

    void handle_messages();

private:
    struct state;
    std::unique_ptr<state> p_state;
};
