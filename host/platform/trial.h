#pragma once
/// Runs what may crash in a child process, where it harms nobody.

#include <chrono>
#include <functional>
#include <string>

/// Runs `attempt` in a copy of this process, its output silenced, and returns the attempt's answer:
/// a complaint, cut at 4095 bytes, or nothing. If the child ends or hangs before it answers, the
/// complaint is a sentence about `subject`. Only before this process starts a second thread.
[[nodiscard]] std::string trial_run(const std::string& subject,
                                    const std::function<std::string()>& attempt,
                                    std::chrono::seconds limit);
