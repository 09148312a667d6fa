#pragma once
/// Writing to a display that has gone raises a signal that by default ends the process, which is
/// the host's. While a guard stands, this thread's writes just fail. [any]

#include <cerrno>
#include <csignal>
#include <ctime>

class SigpipeGuard {
public:
    SigpipeGuard() {
        sigemptyset(&pipe);
        sigaddset(&pipe, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        stoodAlready = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &pipe, &before);
    }

    /// Takes back a signal that was raised meanwhile, but none that stood before.
    ~SigpipeGuard() {
        constexpr timespec at_once{};
        if (!stoodAlready)
            while (sigtimedwait(&pipe, nullptr, &at_once) < 0 && errno == EINTR) {
            }
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
    }

    SigpipeGuard(const SigpipeGuard&) = delete;
    SigpipeGuard& operator=(const SigpipeGuard&) = delete;

private:
    sigset_t pipe, before;
    bool stoodAlready;
};
