#include "vstgui/pixel_format.h"
#include "vstgui/sigpipe_guard.h"
#include "vstgui/window.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <utility>
#include <vector>
#include <xcb/xcb.h>

// A connection of its own: the host's toolkit sees none of these events, and no error of ours
// reaches its handlers. Key events are not selected, so they go on to the host.

namespace {

constexpr std::size_t put_bytes = 1 << 17; ///< at a time; every server takes that much
constexpr std::uint32_t double_click_ms = 400;
constexpr int double_click_pixels = 4;

struct freed {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using reply_ptr = std::unique_ptr<Reply, freed>;

struct disconnected {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using connection_ptr = std::unique_ptr<xcb_connection_t, disconnected>;

/// The screen that a window is on; null without such a window.
const xcb_screen_t* screen_of(xcb_connection_t* connection, xcb_window_t window) {
    const reply_ptr<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
    if (!geometry)
        return nullptr;
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 0; xcb_screen_next(&screens))
        if (screens.data->root == geometry->root)
            return screens.data;
    return nullptr;
}

int buttons_of(std::uint16_t state) {
    return ((state & XCB_MOD_MASK_SHIFT) != 0 ? kShift : 0)
           | ((state & XCB_MOD_MASK_CONTROL) != 0 ? kControl : 0)
           | ((state & XCB_MOD_MASK_1) != 0 ? kAlt : 0);
}

int button_of(xcb_button_t number) {
    constexpr int buttons[] = {0, kLButton, kMButton, kRButton};
    return number < std::size(buttons) ? buttons[number] : 0;
}

class XcbWindow final : public PlatformWindow {
public:
    XcbWindow(connection_ptr opened, const PixelFormat& pixels, PlatformWindowListener& hearer)
        : connection(std::move(opened)), format(pixels), listener(hearer) {}
    ~XcbWindow() override;

    /// Returns whether the window is there.
    bool create(xcb_window_t parent, const xcb_screen_t& screen, CPoint size);

    void put(const CDrawContext& picture, const CRect& area) override;
    void handleEvents() override;

private:
    reply_ptr<xcb_generic_event_t> nextEvent();
    void handle(const xcb_generic_event_t& event);
    void lose();
    [[nodiscard]] bool isShown() const;
    void press(const xcb_button_press_event_t& event);
    bool isSecondClick(const xcb_button_press_event_t& event);

    connection_ptr connection;
    PixelFormat format;
    PlatformWindowListener& listener;
    xcb_window_t window = XCB_NONE; ///< none once the parent or the display has gone
    xcb_gcontext_t gc = XCB_NONE;
    std::vector<std::uint8_t> bytes{};
    std::optional<xcb_button_press_event_t> firstClick{};
};

bool XcbWindow::create(xcb_window_t parent, const xcb_screen_t& screen, CPoint size) {
    xcb_connection_t* const c = connection.get();
    // A parent of another depth needs its child to bring a border and a colormap.
    constexpr std::uint32_t mask = XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP;
    const std::uint32_t values[] = {
        screen.black_pixel,
        XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE
            | XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_LEAVE_WINDOW
            | XCB_EVENT_MASK_STRUCTURE_NOTIFY,
        screen.default_colormap};
    window = xcb_generate_id(c);
    gc = xcb_generate_id(c);
    xcb_create_window(c, screen.root_depth, window, parent, 0, 0,
                      static_cast<std::uint16_t>(size.x), static_cast<std::uint16_t>(size.y), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen.root_visual, mask, values);
    xcb_create_gc(c, gc, window, 0, nullptr);
    const auto mapped = xcb_map_window_checked(c, window);
    const reply_ptr<xcb_generic_error_t> error(xcb_request_check(c, mapped));
    return !error && xcb_connection_has_error(c) == 0;
}

XcbWindow::~XcbWindow() {
    const SigpipeGuard guard;
    if (window != XCB_NONE) { // waits, so that the host's window is empty once the panel is closed
        const auto destroyed = xcb_destroy_window_checked(connection.get(), window);
        const reply_ptr<xcb_generic_error_t> error(xcb_request_check(connection.get(), destroyed));
    }
    connection.reset();
}

void XcbWindow::put(const CDrawContext& picture, const CRect& area) {
    const CRect shown = area.intersection(picture.bounds());
    if (shown.empty() || window == XCB_NONE)
        return;
    const SigpipeGuard guard;
    const int nb_rows = std::max(1, static_cast<int>(put_bytes / format.stride(shown.width())));
    for (int top = shown.top; top < shown.bottom; top += nb_rows) {
        const CRect rows{shown.left, top, shown.right, std::min(top + nb_rows, shown.bottom)};
        format.pack(picture, rows, bytes);
        xcb_put_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, gc,
                      static_cast<std::uint16_t>(rows.width()),
                      static_cast<std::uint16_t>(rows.height()),
                      static_cast<std::int16_t>(rows.left), static_cast<std::int16_t>(rows.top), 0,
                      format.getDepth(), static_cast<std::uint32_t>(bytes.size()), bytes.data());
    }
    xcb_flush(connection.get());
}

void XcbWindow::handleEvents() {
    while (const auto event = nextEvent())
        handle(*event);
    if (xcb_connection_has_error(connection.get()) != 0)
        lose();
}

void XcbWindow::lose() {
    if (std::exchange(window, XCB_NONE) != XCB_NONE)
        listener.onMouseLost();
}

reply_ptr<xcb_generic_event_t> XcbWindow::nextEvent() {
    const SigpipeGuard guard;
    return reply_ptr<xcb_generic_event_t>(xcb_poll_for_event(connection.get()));
}

void XcbWindow::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7F) { // the top bit says that another client sent it
    case XCB_EXPOSE: {
        const auto& expose = reinterpret_cast<const xcb_expose_event_t&>(event);
        listener.onExpose({expose.x, expose.y, expose.x + expose.width, expose.y + expose.height});
        break;
    }
    case XCB_BUTTON_PRESS:
        press(reinterpret_cast<const xcb_button_press_event_t&>(event));
        break;
    case XCB_BUTTON_RELEASE: {
        const auto& release = reinterpret_cast<const xcb_button_release_event_t&>(event);
        listener.onMouseUp({release.event_x, release.event_y},
                           button_of(release.detail) | buttons_of(release.state));
        break;
    }
    case XCB_MOTION_NOTIFY: {
        const auto& motion = reinterpret_cast<const xcb_motion_notify_event_t&>(event);
        // A grab of others ends a drag without a word; the button's absence tells.
        if ((motion.state & XCB_BUTTON_MASK_1) == 0)
            listener.onMouseLost();
        listener.onMouseMoved({motion.event_x, motion.event_y}, buttons_of(motion.state));
        break;
    }
    case XCB_LEAVE_NOTIFY:
        // Hiding the window, or one that it lies in, ends a drag without a release. All that is
        // heard of the latter is that the pointer leaves, wherever it is.
        if (!isShown())
            listener.onMouseLost();
        break;
    case XCB_DESTROY_NOTIFY:
        lose();
        break;
    default:; // errors too: what fails here has lost its window
    }
}

bool XcbWindow::isShown() const {
    const SigpipeGuard guard;
    const reply_ptr<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        connection.get(), xcb_get_window_attributes(connection.get(), window), nullptr));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

void XcbWindow::press(const xcb_button_press_event_t& event) {
    constexpr xcb_button_t wheel_up = 4, wheel_down = 5;
    const CPoint where{event.event_x, event.event_y};
    const int keys = buttons_of(event.state);
    if (event.detail == wheel_up || event.detail == wheel_down)
        listener.onMouseWheel(where, event.detail == wheel_up ? 1.0f : -1.0f, keys);
    else if (const int button = button_of(event.detail))
        listener.onMouseDown(where, button | keys | (isSecondClick(event) ? kDoubleClick : 0));
}

/// A third click is a first one again.
bool XcbWindow::isSecondClick(const xcb_button_press_event_t& event) {
    const auto first = std::exchange(firstClick, event);
    const bool second = first && first->detail == event.detail
                        && event.time - first->time <= double_click_ms
                        && std::abs(event.event_x - first->event_x) <= double_click_pixels
                        && std::abs(event.event_y - first->event_y) <= double_click_pixels;
    if (second)
        firstClick.reset();
    return second;
}

} // namespace

std::unique_ptr<PlatformWindow> open_platform_window(void* parent, CPoint size,
                                                     PlatformWindowListener& listener) {
    const SigpipeGuard guard;
    connection_ptr connection(xcb_connect(nullptr, nullptr));
    if (xcb_connection_has_error(connection.get()) != 0)
        return nullptr;
    const auto host_window = static_cast<xcb_window_t>(reinterpret_cast<std::uintptr_t>(parent));
    const xcb_screen_t* const screen = screen_of(connection.get(), host_window);
    if (!screen)
        return nullptr;
    const auto format = PixelFormat::of(xcb_get_setup(connection.get()), *screen);
    if (!format)
        return nullptr;
    auto window = std::make_unique<XcbWindow>(std::move(connection), *format, listener);
    return window->create(host_window, *screen, size) ? std::move(window) : nullptr;
}
