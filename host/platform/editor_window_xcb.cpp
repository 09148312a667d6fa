#include "platform/editor_window.h"

#include <bit>
#include <cstdlib>
#include <span>
#include <utility>
#include <xcb/xtest.h>

namespace {

constexpr int left_button = 1, wheel_up = 4, wheel_down = 5;
constexpr std::uint8_t shift_code = 50, control_code = 37, letter_code = 38;
constexpr std::uint8_t transparent_depth = 32;

struct freed {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using reply_ptr = std::unique_ptr<Reply, freed>;

/// The visual's masks are 0 where pixels are indices into a palette.
xcb_visualtype_t visual_of(const xcb_screen_t& screen) {
    for (auto depths = xcb_screen_allowed_depths_iterator(&screen); depths.rem > 0;
         xcb_depth_next(&depths))
        for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem > 0;
             xcb_visualtype_next(&visuals))
            if (visuals.data->visual_id == screen.root_visual)
                return *visuals.data;
    return {};
}

xcb_visualid_t transparent_visual(const xcb_screen_t& screen) {
    for (auto depths = xcb_screen_allowed_depths_iterator(&screen); depths.rem > 0;
         xcb_depth_next(&depths))
        if (depths.data->depth == transparent_depth && xcb_depth_visuals_length(depths.data) > 0)
            return xcb_depth_visuals(depths.data)->visual_id;
    return screen.root_visual;
}

/// How the server lays out the rows of an image.
xcb_format_t format_of(const xcb_setup_t* setup, int depth) {
    for (auto formats = xcb_setup_pixmap_formats_iterator(setup); formats.rem > 0;
         xcb_format_next(&formats))
        if (formats.data->depth == depth)
            return *formats.data;
    return {};
}

std::uint8_t channel(std::uint32_t pixel, std::uint32_t mask) {
    const int shift = std::countr_zero(mask);
    return static_cast<std::uint8_t>(std::uint64_t{(pixel & mask) >> shift} * 255
                                     / (mask >> shift));
}

std::uint32_t read_pixel(std::span<const std::uint8_t> bytes, bool is_most_significant_first) {
    std::uint32_t pixel = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        pixel = pixel << 8 | bytes[is_most_significant_first ? i : bytes.size() - 1 - i];
    return pixel;
}

} // namespace

struct editor_window::state {
    window_place corner;
    int width;
    int height;
    xcb_connection_t* server = xcb_connect(nullptr, nullptr);
    const xcb_screen_t* screen = nullptr;
    xcb_window_t window = XCB_NONE;
    bool holds_button = false;

    state(window_place corner_on_screen, int its_width, int its_height)
        : corner{corner_on_screen}, width{its_width}, height{its_height} {}
    ~state() { xcb_disconnect(server); } // which takes the window along
    state(const state&) = delete;
    state& operator=(const state&) = delete;

    void open(bool is_transparent);
    [[nodiscard]] reply_ptr<xcb_get_image_reply_t> image() const;
    void fake(std::uint8_t type, int detail, window_place where = {}) const;
    void button(int number, bool down) const {
        fake(down ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, number);
    }
    void sync() const;
};

void editor_window::state::open(bool is_transparent) {
    if (xcb_connection_has_error(server) != 0)
        return;
    screen = xcb_setup_roots_iterator(xcb_get_setup(server)).data;
    const auto depth = is_transparent ? transparent_depth : screen->root_depth;
    const auto visual = is_transparent ? transparent_visual(*screen) : screen->root_visual;
    const xcb_colormap_t colours = xcb_generate_id(server);
    xcb_create_colormap(server, XCB_COLORMAP_ALLOC_NONE, colours, screen->root, visual);
    window = xcb_generate_id(server);
    // Past the window manager, which would decorate, move or even shrink it.
    constexpr std::uint32_t mask = XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL
                                   | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP;
    const std::uint32_t values[] = {screen->black_pixel, screen->black_pixel, 1,
                                    XCB_EVENT_MASK_KEY_PRESS, colours};
    xcb_create_window(server, depth, window, screen->root, static_cast<std::int16_t>(corner.x),
                      static_cast<std::int16_t>(corner.y), static_cast<std::uint16_t>(width),
                      static_cast<std::uint16_t>(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                      mask, values);
    const auto mapped = xcb_map_window_checked(server, window);
    if (const reply_ptr<xcb_generic_error_t> error{xcb_request_check(server, mapped)})
        window = XCB_NONE;
}

reply_ptr<xcb_get_image_reply_t> editor_window::state::image() const {
    constexpr std::uint32_t all_planes = ~0u;
    const auto request = xcb_get_image(server, XCB_IMAGE_FORMAT_Z_PIXMAP, window, 0, 0,
                                       static_cast<std::uint16_t>(width),
                                       static_cast<std::uint16_t>(height), all_planes);
    xcb_generic_error_t* p_error = nullptr; // asked for, or it would queue up as an event
    reply_ptr<xcb_get_image_reply_t> reply{xcb_get_image_reply(server, request, &p_error)};
    std::free(p_error);
    return reply;
}

void editor_window::state::fake(std::uint8_t type, int detail, window_place where) const {
    if (!screen)
        return;
    xcb_test_fake_input(server, type, static_cast<std::uint8_t>(detail), XCB_CURRENT_TIME,
                        screen->root, static_cast<std::int16_t>(where.x),
                        static_cast<std::int16_t>(where.y), 0);
    sync();
}

/// A reply comes after all that was asked before it, and what others are told of that is on its way
/// to them when the next question is read.
void editor_window::state::sync() const {
    for (int i = 0; i < 2; ++i)
        const reply_ptr<xcb_get_input_focus_reply_t> answer{
            xcb_get_input_focus_reply(server, xcb_get_input_focus(server), nullptr)};
}

editor_window::editor_window(int width, int height, window_place corner_on_screen,
                             bool is_transparent)
    : p_state_{std::make_unique<state>(corner_on_screen, width, height)} {
    p_state_->open(is_transparent);
}

editor_window::~editor_window() {
    if (p_state_->holds_button)
        release();
}

void* editor_window::handle() const {
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(p_state_->window));
}

void editor_window::resize(int width, int height) {
    p_state_->width = width;
    p_state_->height = height;
    const std::uint32_t values[] = {static_cast<std::uint32_t>(width),
                                    static_cast<std::uint32_t>(height)};
    xcb_configure_window(p_state_->server, p_state_->window,
                         XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values);
}

void editor_window::show(bool shown) {
    (shown ? xcb_map_window : xcb_unmap_window)(p_state_->server, p_state_->window);
    p_state_->sync();
}

void editor_window::show_content(bool shown) {
    (shown ? xcb_map_subwindows : xcb_unmap_subwindows)(p_state_->server, p_state_->window);
    p_state_->sync();
}

void editor_window::destroy() {
    if (const xcb_window_t gone = std::exchange(p_state_->window, XCB_NONE))
        xcb_destroy_window(p_state_->server, gone);
    p_state_->sync();
}

long editor_window::nb_left() const {
    const auto request = xcb_query_tree(p_state_->server, p_state_->window);
    const reply_ptr<xcb_query_tree_reply_t> tree{
        xcb_query_tree_reply(p_state_->server, request, nullptr)};
    return tree ? tree->children_len : 0;
}

void editor_window::take_keys() {
    xcb_set_input_focus(p_state_->server, XCB_INPUT_FOCUS_PARENT, p_state_->window,
                        XCB_CURRENT_TIME);
    p_state_->sync();
}

bool editor_window::gets_keys() {
    p_state_->fake(XCB_KEY_PRESS, letter_code);
    p_state_->fake(XCB_KEY_RELEASE, letter_code);
    while (const reply_ptr<xcb_generic_event_t> event{xcb_poll_for_event(p_state_->server)})
        if ((event->response_type & 0x7F) == XCB_KEY_PRESS
            && reinterpret_cast<const xcb_key_press_event_t*>(event.get())->detail == letter_code)
            return true;
    return false;
}

void editor_window::move(window_place in_window) {
    p_state_->fake(XCB_MOTION_NOTIFY, 0,
                   {p_state_->corner.x + in_window.x, p_state_->corner.y + in_window.y});
}

void editor_window::press() {
    p_state_->button(left_button, true);
    p_state_->holds_button = true;
}

void editor_window::release() {
    p_state_->button(left_button, false);
    p_state_->holds_button = false;
}

void editor_window::click_twice() {
    for (int i = 0; i < 2; ++i) {
        press();
        release();
    }
}

void editor_window::turn_wheel(int notches) {
    for (const bool down : {true, false})
        p_state_->button(notches > 0 ? wheel_up : wheel_down, down);
}

void editor_window::hold(key held, bool down) {
    p_state_->fake(down ? XCB_KEY_PRESS : XCB_KEY_RELEASE,
                   held == key::shift ? shift_code : control_code);
}

void editor_window::take_mouse_away() { show(false); }
void editor_window::give_mouse_back() { show(true); }

void editor_window::handle_messages() {} // editors ask the server themselves

picture editor_window::take() const {
    const auto image = p_state_->image();
    if (!image)
        return {};
    const xcb_setup_t* setup = xcb_get_setup(p_state_->server);
    const xcb_visualtype_t visual = visual_of(*p_state_->screen);
    const xcb_format_t format = format_of(setup, image->depth);
    const std::span bytes{xcb_get_image_data(image.get()),
                          static_cast<std::size_t>(xcb_get_image_data_length(image.get()))};
    const auto width = static_cast<std::size_t>(p_state_->width);
    const auto height = static_cast<std::size_t>(p_state_->height);
    const std::size_t stride = bytes.size() / height; // rows are padded
    const std::size_t pixel_bytes = format.bits_per_pixel / 8u;
    if (visual.red_mask == 0 || pixel_bytes == 0 || pixel_bytes * width > stride)
        return {};

    const bool is_most_significant_first = setup->image_byte_order == XCB_IMAGE_ORDER_MSB_FIRST;
    picture shown{p_state_->width, p_state_->height, {}};
    shown.pixels.reserve(width * height * 3);
    for (std::size_t y = 0; y < height; ++y)
        for (std::size_t x = 0; x < width; ++x) {
            const auto word = bytes.subspan(y * stride + x * pixel_bytes, pixel_bytes);
            const std::uint32_t pixel = read_pixel(word, is_most_significant_first);
            for (const std::uint32_t mask : {visual.red_mask, visual.green_mask, visual.blue_mask})
                shown.pixels.push_back(channel(pixel, mask));
        }
    return shown;
}
