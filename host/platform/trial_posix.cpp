#include "platform/trial.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr char answer_mark = '>'; // before the answer, so that an empty one differs from none

[[noreturn]] void run_child(int answer_pipe, const std::function<std::string()>& attempt) {
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
    const std::string answer = answer_mark + attempt().substr(0, 4096 - 1);
    const bool written = write(answer_pipe, answer.data(), answer.size()) > 0;
    _exit(written ? 0 : 1);
}

/// What the child wrote; empty if it ended without, nothing if it is still silent at the limit.
std::optional<std::string> wait_for_answer(int answer_pipe, std::chrono::seconds limit) {
    pollfd waiting{answer_pipe, POLLIN, 0};
    const int timeout = static_cast<int>(std::chrono::milliseconds{limit}.count());
    if (poll(&waiting, 1, timeout) <= 0)
        return std::nullopt;
    std::array<char, 4096> answer{};
    const auto nb_bytes = read(answer_pipe, answer.data(), answer.size());
    return std::string(answer.data(), nb_bytes > 0 ? static_cast<std::size_t>(nb_bytes) : 0);
}

std::string describe_end(int status) {
    if (WIFSIGNALED(status))
        return std::string{" crashes while it loads ("} + strsignal(WTERMSIG(status)) + ")";
    return " ends the process while it loads";
}

} // namespace

std::string trial_run(const std::string& subject, const std::function<std::string()>& attempt,
                      std::chrono::seconds limit) {
    std::array<int, 2> ends{};
    const bool has_pipe = pipe2(ends.data(), O_CLOEXEC) == 0;
    const pid_t child = has_pipe ? fork() : -1;
    if (child < 0)
        return subject + " cannot be tried: " + std::strerror(errno);
    if (child == 0)
        run_child(ends[1], attempt);
    close(ends[1]);

    const auto answer = wait_for_answer(ends[0], limit);
    close(ends[0]);
    if (!answer)
        kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    if (!answer)
        return subject + " does not finish loading within " + std::to_string(limit.count())
               + " seconds";
    return answer->empty() ? subject + describe_end(status) : answer->substr(1);
}
