#pragma once
/// Another program, run beside the host and apart from it: it gets a clean environment, untouched
/// signals and, for its complaints, the host's standard error, but no other file of the host's.
/// What it prints can be read. All is [ui], which it holds up no longer than it says.

#include <chrono>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

class ChildProcess {
public:
    /// Nothing when the program cannot be run, for instance because it is not installed.
    [[nodiscard]] static std::optional<ChildProcess> run(const std::vector<std::string>& command);

    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&&) = delete;
    ~ChildProcess(); ///< ends it, within a second, if need be by force

    /// Adds to `text` what it prints within the next `timeout_ms`. Returns false once it has closed
    /// its output or ended.
    bool read(std::string& text, int timeout_ms);

    /// Whether it ends well, now that it prints no more: with status 0, and within half a second.
    /// Where the host reaps its children itself the status is lost, and taken to be 0.
    [[nodiscard]] bool succeeds();

private:
    ChildProcess(pid_t id, int output) : pid(id), output_fd(output) {}

    bool endsWithin(std::chrono::milliseconds time);

    pid_t pid;      ///< 0 once it has ended, when the number may be another's, or once moved from
    int output_fd;  ///< -1 once moved from
    int status = 0; ///< waitpid's
};
