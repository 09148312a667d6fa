#pragma once
/// Runs what may crash in a child process, where it harms nobody.

#include <chrono>
#include <functional>
#include <string>

/// Runs `attempt` in a copy of this process, its output silenced. Returns nothing if it comes back,
/// even by an exception; if the child ends or hangs instead, a sentence about `subject`. Only
/// before this process starts a second thread.
[[nodiscard]] std::string trial_run(const std::string& subject,
                                    const std::function<void()>& attempt,
                                    std::chrono::seconds limit);
