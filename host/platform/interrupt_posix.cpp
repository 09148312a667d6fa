#include "platform/interrupt.h"

#include <array>
#include <csignal>

namespace {

constexpr std::array requests{SIGINT, SIGTERM};
volatile std::sig_atomic_t is_requested = 0;

// SA_RESETHAND would give back only the signal that came, and Ctrl-C is often followed by kill.
void take_request(int) {
    is_requested = 1;
    for (const int request : requests)
        std::signal(request, SIG_DFL);
}

} // namespace

void interrupt_catch() {
    struct sigaction action {};
    action.sa_handler = take_request;
    action.sa_flags = SA_RESTART;
    for (const int request : requests)
        sigaddset(&action.sa_mask, request);
    for (const int request : requests)
        sigaction(request, &action, nullptr);
}

bool interrupt_requested() { return is_requested != 0; }
