#include "platform/picture_window.h"

#include <bit>
#include <cstdlib>
#include <span>
#include <xcb/xcb.h>

namespace {

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

struct picture_window::connection {
    xcb_connection_t* server = xcb_connect(nullptr, nullptr);
    const xcb_screen_t* screen = nullptr;
    xcb_window_t window = XCB_NONE;

    connection() = default;
    ~connection() { xcb_disconnect(server); } // which takes the window along
    connection(const connection&) = delete;
    connection& operator=(const connection&) = delete;

    void open(int width, int height);
    [[nodiscard]] reply_ptr<xcb_get_image_reply_t> image(int width, int height) const;
};

void picture_window::connection::open(int width, int height) {
    if (xcb_connection_has_error(server) != 0)
        return;
    screen = xcb_setup_roots_iterator(xcb_get_setup(server)).data;
    window = xcb_generate_id(server);
    // Past the window manager, which would decorate, move or even shrink it.
    constexpr std::uint32_t mask = XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT;
    const std::uint32_t values[] = {screen->black_pixel, 1};
    xcb_create_window(server, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0,
                      static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, mask, values);
    const auto mapped = xcb_map_window_checked(server, window);
    if (const reply_ptr<xcb_generic_error_t> error{xcb_request_check(server, mapped)})
        window = XCB_NONE;
}

reply_ptr<xcb_get_image_reply_t> picture_window::connection::image(int width, int height) const {
    constexpr std::uint32_t all_planes = ~0u;
    const auto request = xcb_get_image(server, XCB_IMAGE_FORMAT_Z_PIXMAP, window, 0, 0,
                                       static_cast<std::uint16_t>(width),
                                       static_cast<std::uint16_t>(height), all_planes);
    xcb_generic_error_t* p_error = nullptr; // asked for, or it would queue up as an event
    reply_ptr<xcb_get_image_reply_t> reply{xcb_get_image_reply(server, request, &p_error)};
    std::free(p_error);
    return reply;
}

picture_window::picture_window(int width, int height)
    : p_connection_{std::make_unique<connection>()}, width_{width}, height_{height} {
    p_connection_->open(width, height);
}

picture_window::~picture_window() = default;

void* picture_window::handle() const {
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(p_connection_->window));
}

void picture_window::resize(int width, int height) {
    width_ = width;
    height_ = height;
    const std::uint32_t values[] = {static_cast<std::uint32_t>(width),
                                    static_cast<std::uint32_t>(height)};
    xcb_configure_window(p_connection_->server, p_connection_->window,
                         XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values);
}

picture picture_window::take() const {
    const auto image = p_connection_->image(width_, height_);
    if (!image)
        return {};
    const xcb_setup_t* setup = xcb_get_setup(p_connection_->server);
    const xcb_visualtype_t visual = visual_of(*p_connection_->screen);
    const xcb_format_t format = format_of(setup, image->depth);
    const std::span bytes{xcb_get_image_data(image.get()),
                          static_cast<std::size_t>(xcb_get_image_data_length(image.get()))};
    const auto width = static_cast<std::size_t>(width_);
    const auto height = static_cast<std::size_t>(height_);
    const std::size_t stride = bytes.size() / height; // rows are padded
    const std::size_t pixel_bytes = format.bits_per_pixel / 8u;
    if (visual.red_mask == 0 || pixel_bytes == 0 || pixel_bytes * width > stride)
        return {};

    const bool is_most_significant_first = setup->image_byte_order == XCB_IMAGE_ORDER_MSB_FIRST;
    picture shown{width_, height_, {}};
    shown.pixels.reserve(width * height * 3);
    for (std::size_t y = 0; y < height; ++y)
        for (std::size_t x = 0; x < width; ++x) {
            const auto place = bytes.subspan(y * stride + x * pixel_bytes, pixel_bytes);
            const std::uint32_t pixel = read_pixel(place, is_most_significant_first);
            for (const std::uint32_t mask : {visual.red_mask, visual.green_mask, visual.blue_mask})
                shown.pixels.push_back(channel(pixel, mask));
        }
    return shown;
}
