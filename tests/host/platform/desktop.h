#pragma once
/// A display that nobody sees, and the hands and eyes of somebody before it.

#include "platform/display.h"

#include <cstdlib>
#include <xcb/xtest.h>

struct desktop {
    display shown{display::choice::unseen};
    xcb_connection_t* server = xcb_connect(nullptr, nullptr);
    xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(server)).data->root;

    desktop() = default;
    ~desktop() { xcb_disconnect(server); }
    desktop(const desktop&) = delete;
    desktop& operator=(const desktop&) = delete;

    /// What others are told of all that was done is on its way to them when this returns.
    void sync() const {
        for (int i = 0; i < 2; ++i)
            (void)focus();
    }
    /// The window that has the keyboard; none where the display is gone.
    [[nodiscard]] xcb_window_t focus() const {
        auto* p_focus = xcb_get_input_focus_reply(server, xcb_get_input_focus(server), nullptr);
        const xcb_window_t window = p_focus ? p_focus->focus : static_cast<xcb_window_t>(XCB_NONE);
        std::free(p_focus);
        return window;
    }
    /// The bytes of a window's property; none where there is no such.
    [[nodiscard]] std::string property(xcb_window_t window, xcb_atom_t name) const {
        auto* p_reply = xcb_get_property_reply(
            server, xcb_get_property(server, 0, window, name, XCB_ATOM_ANY, 0, 64), nullptr);
        std::string bytes;
        if (p_reply)
            bytes.assign(static_cast<const char*>(xcb_get_property_value(p_reply)),
                         static_cast<std::size_t>(xcb_get_property_value_length(p_reply)));
        std::free(p_reply);
        return bytes;
    }
    [[nodiscard]] xcb_atom_t atom(const std::string& name) const {
        const auto length = static_cast<std::uint16_t>(name.size());
        auto* p_atom = xcb_intern_atom_reply(
            server, xcb_intern_atom(server, 0, length, name.c_str()), nullptr);
        const xcb_atom_t found = p_atom->atom;
        std::free(p_atom);
        return found;
    }
    /// Presses or lets go a key, as the type of event says.
    void strike(std::uint8_t type, std::uint8_t key) const {
        xcb_test_fake_input(server, type, key, XCB_CURRENT_TIME, root, 0, 0, 0);
        sync();
    }
    /// With the pointer's first button.
    void click(std::int16_t x, std::int16_t y) const {
        xcb_test_fake_input(server, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, root, x, y, 0);
        strike(XCB_BUTTON_PRESS, 1);
        strike(XCB_BUTTON_RELEASE, 1);
    }
    /// Asks a window to close, as its decoration does.
    void close(xcb_window_t window) const {
        xcb_client_message_event_t request{};
        request.response_type = XCB_CLIENT_MESSAGE;
        request.format = 32;
        request.window = window;
        request.type = atom("WM_PROTOCOLS");
        request.data.data32[0] = atom("WM_DELETE_WINDOW");
        xcb_send_event(server, 0, window, 0, reinterpret_cast<const char*>(&request));
        sync();
    }
};
