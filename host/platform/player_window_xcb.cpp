#include "platform/player_window.h"

#include <cstdlib>
#include <map>
#include <utility>
#include <xcb/xcb.h>

namespace {

constexpr int first_key_code = 8;                              // which is Linux's 0
constexpr std::uint32_t input_hint = 1, takes_input = 1;       // of WM_HINTS
constexpr std::uint32_t smallest_size = 16, largest_size = 32; // of WM_NORMAL_HINTS

struct freed {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using reply_ptr = std::unique_ptr<Reply, freed>;

} // namespace

struct player_window::state {
    xcb_connection_t* server = xcb_connect(nullptr, nullptr);
    xcb_window_t window = XCB_NONE;
    xcb_atom_t close_request = XCB_NONE;
    std::map<int, xcb_timestamp_t> released{}; // keys that may be about to repeat
    bool has_asked_for_keys = false;

    state() = default;
    ~state() { xcb_disconnect(server); } // which takes the window along
    state(const state&) = delete;
    state& operator=(const state&) = delete;

    void open(int width, int height, const std::string& title);
    [[nodiscard]] xcb_atom_t atom(const std::string& name) const;
    void set(const std::string& property, xcb_atom_t type, std::uint8_t width, std::size_t nb,
             const void* values) const;
    void set_size(int width, int height) const;
    void handle(const xcb_generic_event_t& event, window_events& told);
    void handle_key(const xcb_key_press_event_t& event, bool is_press, window_events& told);
};

xcb_atom_t player_window::state::atom(const std::string& name) const {
    const reply_ptr<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(
        server, xcb_intern_atom(server, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
        nullptr)};
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_NONE);
}

void player_window::state::set(const std::string& property, xcb_atom_t type, std::uint8_t width,
                               std::size_t nb, const void* values) const {
    xcb_change_property(server, XCB_PROP_MODE_REPLACE, window, atom(property), type, width,
                        static_cast<std::uint32_t>(nb), values);
}

/// Window managers keep a window whose smallest size is its largest.
void player_window::state::set_size(int width, int height) const {
    const auto w = static_cast<std::uint32_t>(width), h = static_cast<std::uint32_t>(height);
    std::uint32_t hints[18] = {smallest_size | largest_size, 0, 0, 0, 0, w, h, w, h};
    set("WM_NORMAL_HINTS", XCB_ATOM_WM_SIZE_HINTS, 32, std::size(hints), hints);
    const std::uint32_t size[] = {w, h};
    xcb_configure_window(server, window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
}

void player_window::state::open(int width, int height, const std::string& title) {
    if (xcb_connection_has_error(server) != 0)
        return;
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(server)).data;
    window = xcb_generate_id(server);
    const std::uint32_t values[] = {
        screen->black_pixel, XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE
                                 | XCB_EVENT_MASK_FOCUS_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    const auto created = xcb_create_window_checked(
        server, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, static_cast<std::uint16_t>(width),
        static_cast<std::uint16_t>(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
        XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
    if (const reply_ptr<xcb_generic_error_t> error{xcb_request_check(server, created)}) {
        window = XCB_NONE;
        return;
    }
    constexpr char program[] = "tindelwax\0tindelwax"; // instance and class
    close_request = atom("WM_DELETE_WINDOW");
    const std::uint32_t hints[9] = {input_hint, takes_input};
    set("WM_NAME", XCB_ATOM_STRING, 8, title.size(), title.c_str());
    set("_NET_WM_NAME", atom("UTF8_STRING"), 8, title.size(), title.c_str());
    set("WM_CLASS", XCB_ATOM_STRING, 8, sizeof program, program);
    set("WM_HINTS", XCB_ATOM_WM_HINTS, 32, std::size(hints), hints);
    set("WM_PROTOCOLS", XCB_ATOM_ATOM, 32, 1, &close_request);
    set_size(width, height);
    xcb_map_window(server, window);
    xcb_flush(server);
}

void player_window::state::handle(const xcb_generic_event_t& event, window_events& told) {
    switch (event.response_type & 0x7F) {
    case XCB_KEY_PRESS:
        return handle_key(reinterpret_cast<const xcb_key_press_event_t&>(event), true, told);
    case XCB_KEY_RELEASE:
        return handle_key(reinterpret_cast<const xcb_key_press_event_t&>(event), false, told);
    case XCB_FOCUS_OUT: {
        const auto& lost = reinterpret_cast<const xcb_focus_out_event_t&>(event);
        told.lost_keys |= lost.mode == XCB_NOTIFY_MODE_NORMAL
                          && lost.detail != XCB_NOTIFY_DETAIL_INFERIOR
                          && lost.detail != XCB_NOTIFY_DETAIL_POINTER;
        return;
    }
    case XCB_MAP_NOTIFY: // where no window manager does it
        if (!std::exchange(has_asked_for_keys, true))
            xcb_set_input_focus(server, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
        return;
    case XCB_CLIENT_MESSAGE:
        told.is_closed |= reinterpret_cast<const xcb_client_message_event_t&>(event).data.data32[0]
                          == close_request;
        return;
    case XCB_DESTROY_NOTIFY:
        told.is_closed |=
            reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window == window;
        return;
    default:
        return;
    }
}

/// A key that repeats is let go and pressed at one time.
void player_window::state::handle_key(const xcb_key_press_event_t& event, bool is_press,
                                      window_events& told) {
    const int code = event.detail - first_key_code;
    const auto let_go = released.find(code);
    if (!is_press)
        released[code] = event.time;
    else if (let_go != released.end() && let_go->second == event.time)
        released.erase(let_go);
    else
        told.keys.push_back({code, true});
}

player_window::player_window(int width, int height, const std::string& title)
    : p_state_{std::make_unique<state>()} {
    p_state_->open(width, height, title);
}

player_window::~player_window() = default;

void* player_window::handle() const {
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(p_state_->window));
}

void player_window::resize(int width, int height) {
    p_state_->set_size(width, height);
    xcb_flush(p_state_->server);
}

window_events player_window::take_events() {
    window_events told;
    const auto before = p_state_->released;
    while (const reply_ptr<xcb_generic_event_t> event{xcb_poll_for_event(p_state_->server)})
        p_state_->handle(*event, told);
    // What was let go before the last call and is not pressed again was no repetition.
    for (const auto& [code, time] : before)
        if (const auto waiting = p_state_->released.find(code);
            waiting != p_state_->released.end() && waiting->second == time) {
            p_state_->released.erase(waiting);
            told.keys.push_back({code, false});
        }
    xcb_flush(p_state_->server);
    told.is_closed |= xcb_connection_has_error(p_state_->server) != 0;
    return told;
}
