#include "vstgui/window.h"

#include "vstgui/pixel_format.h"
#include "vstgui/sigpipe_guard.h"
#include "vstgui/xcb_connection.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <utility>
#include <vector>
#include <xcb/xcb.h>

namespace {

constexpr std::uint32_t double_click_ms = 400;
constexpr int double_click_pixels = 4;

template <typename Reply>
using reply_ptr = XcbConnection::reply_ptr<Reply>;

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
    XcbWindow(XcbConnection opened, const PixelFormat& pixels, const CDrawContext& shown,
              PlatformWindowListener& hearer)
        : connection(std::move(opened)), format(pixels), picture(shown), listener(hearer) {}
    ~XcbWindow() override;

    /// Returns whether the window is there.
    bool create(xcb_window_t parent, const xcb_screen_t& screen);

    void* getHandle() override {
        return reinterpret_cast<void*>(static_cast<std::uintptr_t>(window));
    }
    void put(const CRect& area) override;
    void handleEvents() override;

private:
    [[nodiscard]] bool hasReadAll();
    void sendUnsent();
    void send(const CRect& area);
    void handle(const xcb_generic_event_t& event);
    void lose();
    void askWhetherShown();
    void hearWhetherShown();
    void press(const xcb_button_press_event_t& event);
    bool isSecondClick(const xcb_button_press_event_t& event);

    XcbConnection connection;
    PixelFormat format;
    const CDrawContext& picture;
    PlatformWindowListener& listener;
    xcb_window_t window = XCB_NONE; ///< none once the parent or the display has gone
    xcb_gcontext_t gc = XCB_NONE;
    std::vector<std::uint8_t> bytes{};
    CRect unsent{};                    ///< what was put and waits for the display
    std::optional<unsigned> reading{}; ///< the question whether the last piece has been read
    std::optional<unsigned> showing{}; ///< and that for the window's attributes
    std::optional<xcb_button_press_event_t> firstClick{};
};

bool XcbWindow::create(xcb_window_t parent, const xcb_screen_t& screen) {
    const CRect size = picture.bounds();
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
                      static_cast<std::uint16_t>(size.width()),
                      static_cast<std::uint16_t>(size.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      screen.root_visual, mask, values);
    xcb_create_gc(c, gc, window, 0, nullptr);
    const auto mapped = xcb_map_window_checked(c, window);
    const reply_ptr<xcb_generic_error_t> error(xcb_request_check(c, mapped));
    return !error && !connection.isLost();
}

XcbWindow::~XcbWindow() {
    if (window == XCB_NONE)
        return;
    xcb_destroy_window(connection.get(), window); // waits, so that the host's window is then empty
    (void)connection.answerTo(connection.askWhetherRead());
}

void XcbWindow::put(const CRect& area) {
    unsent = unsent.united(area.intersection(picture.bounds()));
    sendUnsent();
}

void XcbWindow::sendUnsent() {
    const int nb_rows = std::max(
        1, static_cast<int>(XcbConnection::piece_bytes / format.stride(picture.bounds().width())));
    while (window != XCB_NONE && !unsent.empty() && hasReadAll()) {
        CRect rows = unsent;
        rows.bottom = std::min(rows.top + nb_rows, rows.bottom);
        unsent.top = rows.bottom;
        send(rows);
    }
}

bool XcbWindow::hasReadAll() {
    if (reading && connection.answerTo(*reading))
        reading.reset();
    return !reading;
}

void XcbWindow::send(const CRect& area) {
    const SigpipeGuard guard;
    format.pack(picture, area, bytes);
    xcb_put_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, gc,
                  static_cast<std::uint16_t>(area.width()),
                  static_cast<std::uint16_t>(area.height()), static_cast<std::int16_t>(area.left),
                  static_cast<std::int16_t>(area.top), 0, format.getDepth(),
                  static_cast<std::uint32_t>(bytes.size()), bytes.data());
    reading = connection.askWhetherRead();
    xcb_flush(connection.get());
}

/// Events that come meanwhile wait for the next turn: a mouse that never rests holds up no host.
void XcbWindow::handleEvents() {
    sendUnsent();
    hearWhetherShown();
    for (std::size_t nb_left = connection.readEvents(); nb_left > 0; --nb_left)
        handle(*connection.takeEvent());
    if (connection.isLost())
        lose();
}

void XcbWindow::lose() {
    if (std::exchange(window, XCB_NONE) != XCB_NONE)
        listener.onMouseLost();
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
        askWhetherShown();
        break;
    case XCB_DESTROY_NOTIFY:
        lose();
        break;
    default:; // errors too: what fails here has lost its window
    }
}

void XcbWindow::askWhetherShown() {
    if (showing)
        xcb_discard_reply(connection.get(), *showing);
    showing = xcb_get_window_attributes(connection.get(), window).sequence;
    hearWhetherShown();
}

void XcbWindow::hearWhetherShown() {
    const auto answer = showing ? connection.answerTo(*showing) : std::nullopt;
    if (!answer)
        return;
    showing.reset();
    const auto* attributes = static_cast<xcb_get_window_attributes_reply_t*>(answer->get());
    if (!attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
        listener.onMouseLost();
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

std::unique_ptr<PlatformWindow> open_platform_window(void* parent, const CDrawContext& picture,
                                                     PlatformWindowListener& listener) {
    const SigpipeGuard guard;
    XcbConnection connection;
    if (connection.isLost())
        return nullptr;
    const auto host_window = static_cast<xcb_window_t>(reinterpret_cast<std::uintptr_t>(parent));
    const xcb_screen_t* const screen = screen_of(connection.get(), host_window);
    if (!screen)
        return nullptr;
    const auto format = PixelFormat::of(xcb_get_setup(connection.get()), *screen);
    if (!format)
        return nullptr;
    auto window = std::make_unique<XcbWindow>(std::move(connection), *format, picture, listener);
    return window->create(host_window, *screen) ? std::move(window) : nullptr;
}
