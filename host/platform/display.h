#pragma once
/// A display for the windows of editors.

#include <memory>
#include <string>

class display {
public:
    /// Uses the user's display; where there is none, starts one that nobody sees and makes it this
    /// process's. Where that fails too, `error` tells why and what to do.
    display();
    ~display(); ///< ends the display that it started
    display(const display&) = delete;
    display& operator=(const display&) = delete;

    std::string error{};

private:
    struct closer {
        void operator()(void* p_connection) const;
    };

    void start();

    std::unique_ptr<void, closer> p_connection_{}; // the library's, held so that it stays up
    int process_ = 0;                              // that was started
};
