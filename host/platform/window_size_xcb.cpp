#include "platform/window_size.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace {

struct disconnected {
    void operator()(xcb_connection_t* server) const { xcb_disconnect(server); }
};
struct freed {
    void operator()(void* reply) const { std::free(reply); }
};

} // namespace

window_size window_size_of(void* window) {
    const std::unique_ptr<xcb_connection_t, disconnected> server{xcb_connect(nullptr, nullptr)};
    const auto number = static_cast<xcb_window_t>(reinterpret_cast<std::uintptr_t>(window));
    const std::unique_ptr<xcb_get_geometry_reply_t, freed> geometry{
        xcb_get_geometry_reply(server.get(), xcb_get_geometry(server.get(), number), nullptr)};
    if (!geometry)
        return {};
    return {geometry->width, geometry->height};
}
