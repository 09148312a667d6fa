#include "platform/player_window.h"

#include <bitset>
#include <cstdlib>
#include <optional>
#include <utility>
#include <xcb/xcb.h>

namespace {

constexpr int first_key_code = 8; // which is Linux's 0
constexpr std::size_t nb_key_codes = 248;
constexpr std::uint32_t input_hint = 1, takes_input = 1;       // of WM_HINTS
constexpr std::uint32_t smallest_size = 16, largest_size = 32; // of WM_NORMAL_HINTS

struct freed {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using reply_ptr = std::unique_ptr<Reply, freed>;

struct released_key {
    int code;
    xcb_timestamp_t time;

    bool operator==(const released_key&) const = default;
};

} // namespace

struct player_window::state {
    xcb_connection_t* server = xcb_connect(nullptr, nullptr);
    xcb_window_t window = XCB_NONE;
    xcb_atom_t protocols = XCB_NONE, close_request = XCB_NONE;
    bool takes_keys = false;                // itself, when it appears
    std::bitset<nb_key_codes> held{};       // as they were told
    std::optional<released_key> released{}; // as the last event, so that it may be about to repeat

    state() = default;
    ~state() { xcb_disconnect(server); } // which takes the window along
    state(const state&) = delete;
    state& operator=(const state&) = delete;

    void open(int width, int height, const std::string& title);
    [[nodiscard]] xcb_atom_t atom(const std::string& name) const;
    [[nodiscard]] bool is_managed(xcb_window_t root) const;
    void set(xcb_atom_t property, xcb_atom_t type, std::uint8_t width, std::size_t nb,
             const void* values) const;
    void set_size(int width, int height) const;
    void handle(const xcb_generic_event_t& event, window_events& told);
    void tell(int code, bool is_pressed, window_events& told);
    void tell_released(window_events& told);
};

xcb_atom_t player_window::state::atom(const std::string& name) const {
    const reply_ptr<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(
        server, xcb_intern_atom(server, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
        nullptr)};
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_NONE);
}

/// Whether a window manager is there, who gives the keyboard to windows.
bool player_window::state::is_managed(xcb_window_t root) const {
    const auto question =
        xcb_get_property(server, 0, root, atom("_NET_SUPPORTING_WM_CHECK"), XCB_ATOM_WINDOW, 0, 1);
    const reply_ptr<xcb_get_property_reply_t> manager{
        xcb_get_property_reply(server, question, nullptr)};
    return manager && xcb_get_property_value_length(manager.get()) > 0;
}

void player_window::state::set(xcb_atom_t property, xcb_atom_t type, std::uint8_t width,
                               std::size_t nb, const void* values) const {
    xcb_change_property(server, XCB_PROP_MODE_REPLACE, window, property, type, width,
                        static_cast<std::uint32_t>(nb), values);
}

/// Window managers keep a window whose smallest size is its largest.
void player_window::state::set_size(int width, int height) const {
    const auto w = static_cast<std::uint32_t>(width), h = static_cast<std::uint32_t>(height);
    const std::uint32_t hints[18] = {smallest_size | largest_size, 0, 0, 0, 0, w, h, w, h};
    set(XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, 32, std::size(hints), hints);
    const std::uint32_t size[] = {w, h};
    xcb_configure_window(server, window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
}

void player_window::state::open(int width, int height, const std::string& title) {
    if (xcb_connection_has_error(server) != 0)
        return;
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(server)).data;
    window = xcb_generate_id(server);
    const std::uint32_t values[] = {screen->black_pixel,
                                    XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE
                                        | XCB_EVENT_MASK_KEYMAP_STATE | XCB_EVENT_MASK_FOCUS_CHANGE
                                        | XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    const auto created = xcb_create_window_checked(
        server, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, static_cast<std::uint16_t>(width),
        static_cast<std::uint16_t>(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
        XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
    if (const reply_ptr<xcb_generic_error_t> error{xcb_request_check(server, created)}) {
        window = XCB_NONE;
        return;
    }
    constexpr char program[] = "tindelwax\0tindelwax"; // instance and class
    protocols = atom("WM_PROTOCOLS");
    close_request = atom("WM_DELETE_WINDOW");
    takes_keys = !is_managed(screen->root);
    const std::uint32_t hints[9] = {input_hint, takes_input};
    set(XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, title.size(), title.c_str());
    set(atom("_NET_WM_NAME"), atom("UTF8_STRING"), 8, title.size(), title.c_str());
    set(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8, sizeof program, program);
    set(XCB_ATOM_WM_HINTS, XCB_ATOM_WM_HINTS, 32, std::size(hints), hints);
    set(protocols, XCB_ATOM_ATOM, 32, 1, &close_request);
    set_size(width, height);
    xcb_map_window(server, window);
    xcb_flush(server);
}

void player_window::state::handle(const xcb_generic_event_t& event, window_events& told) {
    const int type = event.response_type & 0x7F;
    const auto& key = reinterpret_cast<const xcb_key_press_event_t&>(event);
    const int code = key.detail - first_key_code;
    // A key that repeats is let go and pressed at one time.
    if (type == XCB_KEY_PRESS && released == released_key{code, key.time}) {
        released.reset();
        return;
    }
    tell_released(told);
    switch (type) {
    case XCB_KEY_PRESS:
        return tell(code, true, told);
    case XCB_KEY_RELEASE:
        released = {code, key.time};
        return;
    case XCB_FOCUS_OUT: {
        const auto& lost = reinterpret_cast<const xcb_focus_out_event_t&>(event);
        const bool is_grab =
            lost.mode == XCB_NOTIFY_MODE_GRAB || lost.mode == XCB_NOTIFY_MODE_UNGRAB;
        if (is_grab || lost.detail == XCB_NOTIFY_DETAIL_INFERIOR)
            return;
        held.reset();
        told.lost_keys = true;
        return;
    }
    case XCB_KEYMAP_NOTIFY: { // with the keyboard, as a grab ends: keys were let go meanwhile
        const auto& keymap = reinterpret_cast<const xcb_keymap_notify_event_t&>(event);
        for (int i = 0; i < static_cast<int>(nb_key_codes); ++i)
            if ((keymap.keys[i / 8] >> i % 8 & 1) == 0)
                tell(i, false, told);
        return;
    }
    case XCB_MAP_NOTIFY:
        if (std::exchange(takes_keys, false))
            xcb_set_input_focus(server, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
        return;
    case XCB_CLIENT_MESSAGE: {
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
        told.is_closed |= message.type == protocols && message.data.data32[0] == close_request;
        return;
    }
    case XCB_DESTROY_NOTIFY:
        told.is_closed = true;
        return;
    default:
        return;
    }
}

void player_window::state::tell(int code, bool is_pressed, window_events& told) {
    const auto i = static_cast<std::size_t>(code);
    if (i >= held.size() || held[i] == is_pressed)
        return;
    held[i] = is_pressed;
    told.keys.push_back({code, is_pressed});
}

void player_window::state::tell_released(window_events& told) {
    if (const auto key = std::exchange(released, std::nullopt))
        tell(key->code, false, told);
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
    const auto next = [this] {
        return reply_ptr<xcb_generic_event_t>{xcb_poll_for_event(p_state_->server)};
    };
    auto event = next();
    if (!event)
        p_state_->tell_released(told);
    for (; event; event = next())
        p_state_->handle(*event, told);
    xcb_flush(p_state_->server);
    told.is_closed |= xcb_connection_has_error(p_state_->server) != 0;
    return told;
}
