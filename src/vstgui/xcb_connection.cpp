#include "vstgui/xcb_connection.h"

#include "vstgui/sigpipe_guard.h"

#include <algorithm>
#include <chrono>
#include <poll.h>
#include <sys/socket.h>
#include <utility>
#include <xcb/xcbext.h>

using namespace std::chrono_literals;

namespace {

using clock = std::chrono::steady_clock;

constexpr auto patience = 250ms;

/// Returns whether there is something to read before that time.
bool wait_to_read(int socket, clock::time_point deadline) {
    pollfd ready{.fd = socket, .events = POLLIN, .revents = 0};
    const auto rest = std::chrono::ceil<std::chrono::milliseconds>(deadline - clock::now());
    return poll(&ready, 1, static_cast<int>(std::max(rest, 0ms).count())) != 0; // or a signal came
}

} // namespace

XcbConnection::XcbConnection() : connection(xcb_connect(nullptr, nullptr)) {
    const int size = 4 * piece_bytes; // of what the system keeps for the server, with its own needs
    setsockopt(xcb_get_file_descriptor(get()), SOL_SOCKET, SO_SNDBUF, &size, sizeof size);
}

unsigned XcbConnection::askWhetherRead() { return xcb_get_input_focus(get()).sequence; }

std::optional<XcbConnection::reply_ptr<void>> XcbConnection::answerTo(unsigned question) {
    const SigpipeGuard guard;
    xcb_flush(get());
    const auto deadline = clock::now() + (late ? 0ms : patience);
    do {
        readEvents(); // and answers
        void* reply = nullptr;
        xcb_generic_error_t* error = nullptr;
        if (xcb_poll_for_reply(get(), question, &reply, &error) != 0) {
            std::free(error);
            late = false;
            return reply_ptr<void>(reply);
        }
    } while (wait_to_read(xcb_get_file_descriptor(get()), deadline));
    late = true;
    return std::nullopt;
}

std::size_t XcbConnection::readEvents() {
    const SigpipeGuard guard;
    while (event_ptr event{xcb_poll_for_event(get())})
        events.push_back(std::move(event));
    return events.size();
}

XcbConnection::event_ptr XcbConnection::takeEvent() {
    if (events.empty())
        return nullptr;
    event_ptr event = std::move(events.front());
    events.pop_front();
    return event;
}
