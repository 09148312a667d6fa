#include "tests/x_host/x_host.h"

#include "tests/panel_picture/panel_picture.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>
#include <xcb/xtest.h>

namespace {

xcb_window_t number_of(void* window) {
    return static_cast<xcb_window_t>(reinterpret_cast<std::uintptr_t>(window));
}

template <typename Reply>
std::unique_ptr<Reply, decltype(&std::free)> owned(Reply* reply) {
    if (!reply)
        throw std::runtime_error("the display does not answer");
    return {reply, std::free};
}

xcb_visualtype_t visual_of(const xcb_screen_t& screen) {
    for (auto depths = xcb_screen_allowed_depths_iterator(&screen); depths.rem > 0;
         xcb_depth_next(&depths))
        for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem > 0;
             xcb_visualtype_next(&visuals))
            if (visuals.data->visual_id == screen.root_visual)
                return *visuals.data;
    throw std::runtime_error("the screen's visual is unknown");
}

xcb_visualid_t visual_of_depth(const xcb_screen_t& screen, int depth) {
    for (auto depths = xcb_screen_allowed_depths_iterator(&screen); depths.rem > 0;
         xcb_depth_next(&depths))
        if (depths.data->depth == depth && xcb_depth_visuals_length(depths.data) > 0)
            return xcb_depth_visuals(depths.data)->visual_id;
    throw std::runtime_error("the screen has no visual of that depth");
}

/// From 0 to 255.
std::uint32_t channel(std::uint32_t pixel, std::uint32_t mask) {
    const int shift = std::countr_zero(mask);
    const std::uint32_t largest = mask >> shift;
    return ((pixel & mask) >> shift) * 255 / largest;
}

} // namespace

XServer::XServer(int depth) {
    int ends[2];
    if (pipe(ends) != 0)
        throw std::runtime_error("no pipe");
    std::string number_fd = std::to_string(ends[1]);
    std::string screen = "800x600x" + std::to_string(depth);
    // It goes when its last client does, so that a crashed test leaves none, and holds no pipe.
    const std::array<const char*, 10> arguments{
        "Xvfb",      "-displayfd", number_fd.c_str(), "-screen", "0", screen.c_str(),
        "-nolisten", "tcp",        "-terminate",      nullptr};
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&files, STDOUT_FILENO, STDERR_FILENO);
    const int error =
        posix_spawnp(&pid, "Xvfb", &files, nullptr, const_cast<char**>(arguments.data()), environ);
    posix_spawn_file_actions_destroy(&files);
    close(ends[1]);
    std::string number;
    char next = 0; // to the line's end: the server ends when it cannot write all of it
    while (error == 0 && read(ends[0], &next, 1) == 1 && next != '\n')
        number += next;
    close(ends[0]);
    if (number.empty())
        throw std::runtime_error("Xvfb does not start: install xvfb");
    setenv("DISPLAY", (":" + number).c_str(), 1);
}

void XServer::stop(int signal) {
    if (const pid_t ended = std::exchange(pid, 0)) {
        kill(ended, signal);
        waitpid(ended, nullptr, 0);
    }
}

XHost::XHost() : connection(xcb_connect(nullptr, nullptr)) {
    screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
}

XHost::~XHost() { xcb_disconnect(connection); }

void* XHost::makeWindow(CPoint corner, bool transparent) {
    const xcb_window_t window = xcb_generate_id(connection);
    const int depth = transparent ? 32 : screen->root_depth;
    const xcb_visualid_t visual = transparent ? visual_of_depth(*screen, 32) : screen->root_visual;
    const xcb_colormap_t colours = xcb_generate_id(connection);
    xcb_create_colormap(connection, XCB_COLORMAP_ALLOC_NONE, colours, screen->root, visual);
    const std::uint32_t values[] = {screen->black_pixel, screen->black_pixel, 1, colours};
    xcb_create_window(connection, static_cast<std::uint8_t>(depth), window, screen->root,
                      static_cast<std::int16_t>(corner.x), static_cast<std::int16_t>(corner.y), 480,
                      400, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT
                          | XCB_CW_COLORMAP,
                      values);
    xcb_map_window(connection, window);
    sync();
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(window));
}

void XHost::destroyWindow(void* window) {
    xcb_destroy_window(connection, number_of(window));
    sync();
}

CDrawContext XHost::picture(void* window) {
    const auto image =
        owned(xcb_get_image_reply(connection,
                                  xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP,
                                                number_of(window), 0, 0, 480, 400, ~0u),
                                  nullptr));
    const std::uint8_t* bytes = xcb_get_image_data(image.get());
    const xcb_visualtype_t visual = visual_of(*screen);
    CDrawContext shown(480, 400);
    const std::size_t pixel_bytes =
        static_cast<std::size_t>(xcb_get_image_data_length(image.get())) / (480 * 400);
    for (int y = 0; y < 400; ++y)
        for (std::uint32_t& colour : shown.row(y)) {
            std::uint32_t pixel = 0;
            std::memcpy(&pixel, bytes, pixel_bytes);
            bytes += pixel_bytes;
            colour = channel(pixel, visual.red_mask) << 16 | channel(pixel, visual.green_mask) << 8
                     | channel(pixel, visual.blue_mask);
        }
    return shown;
}

std::string XHost::waitFor(void* window, const CDrawContext& expected, int tolerance) {
    std::string difference = first_difference(picture(window), expected, tolerance);
    for (int i = 0; i < 100 && !difference.empty(); ++i)
        difference = first_difference(picture(window), expected, tolerance);
    return difference;
}

void XHost::show(void* window, bool whole, bool shown) {
    const auto request = whole ? (shown ? xcb_map_window : xcb_unmap_window)
                               : (shown ? xcb_map_subwindows : xcb_unmap_subwindows);
    request(connection, number_of(window));
    sync();
}

unsigned XHost::nbChildren(void* window) {
    return owned(xcb_query_tree_reply(connection, xcb_query_tree(connection, number_of(window)),
                                      nullptr))
        ->children_len;
}

void XHost::takeKeys(void* window) {
    const std::uint32_t mask = XCB_EVENT_MASK_KEY_PRESS;
    xcb_change_window_attributes(connection, number_of(window), XCB_CW_EVENT_MASK, &mask);
    xcb_set_input_focus(connection, XCB_INPUT_FOCUS_PARENT, number_of(window), XCB_CURRENT_TIME);
    sync();
}

int XHost::nextKey() {
    using event_ptr = std::unique_ptr<xcb_generic_event_t, decltype(&std::free)>;
    while (const event_ptr event{xcb_poll_for_event(connection), std::free})
        if ((event->response_type & 0x7F) == XCB_KEY_PRESS)
            return reinterpret_cast<const xcb_key_press_event_t*>(event.get())->detail;
    return 0;
}

void XHost::move(CPoint onScreen) { fake(XCB_MOTION_NOTIFY, 0, onScreen); }

void XHost::button(int number, bool down) {
    fake(down ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, static_cast<std::uint8_t>(number), {});
}

void XHost::key(std::uint8_t keycode, bool down) {
    fake(down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, keycode, {});
}

void XHost::fake(std::uint8_t type, std::uint8_t detail, CPoint where) {
    xcb_test_fake_input(connection, type, detail, XCB_CURRENT_TIME, screen->root,
                        static_cast<std::int16_t>(where.x), static_cast<std::int16_t>(where.y), 0);
    sync();
}

/// A reply comes after all that was asked before it, and what others are told of that is on its way
/// to them when the next question is read.
void XHost::sync() {
    for (int i = 0; i < 2; ++i)
        (void)owned(
            xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}
