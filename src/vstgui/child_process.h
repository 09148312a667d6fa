#pragma once
/// Another program, run beside the host and apart from it: it gets a clean environment, no files of
/// the host's and untouched signals; what it prints can be read.

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
    ~ChildProcess(); ///< ends it, unless it has closed its output

    /// Adds to `text` what it prints within the next `timeout_ms`. Returns false once it has closed
    /// its output.
    bool read(std::string& text, int timeout_ms);

private:
    ChildProcess(pid_t id, int output) : pid(id), output_fd(output) {}

    pid_t pid; ///< 0 once moved from
    int output_fd;
    bool finished = false;
};
