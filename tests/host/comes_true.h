#pragma once
/// What another process or thread does comes in its own time.

#include <chrono>
#include <thread>

/// Repeats a look until it succeeds, for a minute at most, or as long as is said.
template <typename Look>
[[nodiscard]] bool comes_true(Look look, int nb_seconds = 60) {
    for (int i = 0; i < 200 * nb_seconds; ++i) {
        if (look())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return false;
}
