#include "conformance/panel_window.h"

#include "tests/x_host/x_host.h"

#include <cstdint>
#include <utility>

namespace {

constexpr int left_button = 1, wheel_up = 4, wheel_down = 5;
constexpr std::uint8_t shift_code = 50, control_code = 37, letter_code = 38;

/// One for all rows. The server goes with its last client, so there is always one.
struct unseen_display {
    XServer server{};
    XHost first{};
};

} // namespace

struct panel_window::state {
    CPoint corner;
    XHost screen{};
    void* window = screen.makeWindow(corner);
};

panel_window::panel_window(CPoint corner_on_screen) {
    static const unseen_display display;
    p_state = std::make_unique<state>(corner_on_screen);
    p_state->screen.takeKeys(handle());
}

/// All windows share the mouse: a row that ended early lets go of it.
panel_window::~panel_window() {
    release();
    destroy();
}

void* panel_window::handle() const { return p_state->window; }

void panel_window::destroy() {
    if (void* gone = std::exchange(p_state->window, nullptr))
        p_state->screen.destroyWindow(gone);
}

std::string panel_window::difference(const CDrawContext& expected) {
    return p_state->screen.waitFor(handle(), expected);
}

long panel_window::nb_left() { return p_state->screen.nbChildren(handle()); }

bool panel_window::gets_keys() {
    p_state->screen.key(letter_code, true);
    p_state->screen.key(letter_code, false);
    return p_state->screen.nextKey() == letter_code;
}

void panel_window::move(CPoint on_panel) {
    p_state->screen.move({p_state->corner.x + on_panel.x, p_state->corner.y + on_panel.y});
}

void panel_window::press() { p_state->screen.button(left_button, true); }
void panel_window::release() { p_state->screen.button(left_button, false); }

void panel_window::click_twice() {
    for (int i = 0; i < 2; ++i) {
        press();
        release();
    }
}

void panel_window::turn_wheel(int notches) {
    for (const bool down : {true, false})
        p_state->screen.button(notches > 0 ? wheel_up : wheel_down, down);
}

void panel_window::hold(key held, bool down) {
    p_state->screen.key(held == key::shift ? shift_code : control_code, down);
}

void panel_window::take_mouse_away() { p_state->screen.show(handle(), true, false); }
void panel_window::give_mouse_back() { p_state->screen.show(handle(), true, true); }

void panel_window::handle_messages() {} // the panel asks the server itself
