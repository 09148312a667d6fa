#pragma once
/// A display for the windows of editors.

#include <csignal>
#include <memory>
#include <string>

class display {
public:
    enum class choice { users, unseen };

    /// Uses the user's display, if that is wanted and there is one. Else starts one that nobody
    /// sees and makes it this process's; where that fails, `error` tells why and what to do.
    explicit display(choice wanted = choice::users, int depth = 24);
    ~display() { stop(); }
    display(const display&) = delete;
    display& operator=(const display&) = delete;

    /// Ends the display that it started; with SIGKILL that tells no client.
    void stop(int signal = SIGTERM);

    /// To the display that it started: one that is stopped answers nobody.
    void send_signal(int number) const;

    std::string error{};

private:
    struct closer {
        void operator()(void* p_connection) const;
    };

    void start(int depth);

    std::unique_ptr<void, closer> p_connection_{}; // the library's, held so that it stays up
    int process_ = 0;                              // that was started
};
