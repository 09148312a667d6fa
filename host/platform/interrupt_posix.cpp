#include "platform/interrupt.h"

#include <atomic>
#include <csignal>
#include <poll.h>
#include <string_view>
#include <unistd.h>

namespace {

std::atomic<const char*> p_file_to_remove = nullptr;
static_assert(decltype(p_file_to_remove)::is_always_lock_free); // as a handler needs it
constexpr std::string_view lines = "\ntindelwax: interrupted\n";
std::string_view sentence = lines.substr(1);

sigset_t requests() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    return set;
}

/// Calls only what a signal may interrupt.
void end(int request) {
    if (const char* p_file = p_file_to_remove)
        unlink(p_file);
    pollfd stream{STDERR_FILENO, POLLOUT, 0};
    if (poll(&stream, 1, 0) > 0) // else it is a pipe that is full
        (void)!write(STDERR_FILENO, sentence.data(), sentence.size());
    std::signal(request, SIG_DFL);
    std::raise(request); // which waits for the end of this function
}

} // namespace

void interrupt_catch() {
    if (isatty(STDERR_FILENO))
        sentence = lines; // past the bar and the keys' echo
    struct sigaction action {};
    action.sa_handler = end;
    action.sa_mask = requests();
    for (const int request : {SIGINT, SIGTERM})
        sigaction(request, &action, nullptr);
    pthread_sigmask(SIG_UNBLOCK, &action.sa_mask, nullptr); // as they may have come to us
}

void interrupt_removes(const char* p_file) { p_file_to_remove = p_file; }

interrupt_pause::interrupt_pause() {
    const sigset_t set = requests();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

interrupt_pause::~interrupt_pause() {
    const sigset_t set = requests();
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}
