#include "platform/interrupt.h"

#include <csignal>
#include <ctime>
#include <poll.h>
#include <string_view>
#include <unistd.h>

namespace {

std::atomic<const char*> p_file_to_remove = nullptr;
std::atomic<bool> is_deferred = false, is_requested = false;
std::atomic<std::time_t> requested_at = 0;
constexpr std::time_t patience_seconds = 2;
static_assert(std::atomic<bool>::is_always_lock_free
              && decltype(p_file_to_remove)::is_always_lock_free); // as a handler needs it
constexpr std::string_view lines = "\ntindelwax: interrupted\n";
std::string_view sentence = lines.substr(1);

sigset_t requests() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    return set;
}

/// Whether the first deferred request is so recent that the process may still end by itself. Some
/// senders ask twice at once.
bool is_patient() {
    const std::time_t now = std::time(nullptr);
    if (!is_requested.exchange(true))
        requested_at = now;
    return now - requested_at < patience_seconds;
}

/// Calls only what a signal may interrupt.
void end(int request) {
    if (is_deferred && is_patient())
        return;
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

const std::atomic<bool>& interrupt_defer() {
    is_deferred = true;
    return is_requested;
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
