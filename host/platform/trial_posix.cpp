#include "platform/trial.h"

#include "platform/streams.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

enum class outcome { came_back, ended, hangs };

[[noreturn]] void run_child(int answer_pipe, const std::function<void()>& attempt) {
    prctl(PR_SET_PDEATHSIG, SIGKILL); // one that hangs must not outlive a parent that is stopped
    discard_output();
    try {
        attempt();
    } catch (...) {
    }
    const bool written = write(answer_pipe, "", 1) == 1;
    _exit(written ? 0 : 1);
}

/// No signal cuts the calls short: the only handlers of this process end it.
outcome wait_for_answer(int answer_pipe, std::chrono::seconds limit) {
    using namespace std::chrono;
    pollfd waiting{answer_pipe, POLLIN, 0};
    if (poll(&waiting, 1, static_cast<int>(milliseconds{limit}.count())) <= 0)
        return outcome::hangs;
    char answer = 0;
    return read(answer_pipe, &answer, 1) == 1 ? outcome::came_back : outcome::ended;
}

std::string describe_end(int status) {
    if (WIFSIGNALED(status))
        return std::string{" crashes in a trial run ("} + strsignal(WTERMSIG(status)) + ")";
    return " ends the process in a trial run";
}

} // namespace

std::string trial_run(const std::string& subject, const std::function<void()>& attempt,
                      std::chrono::seconds limit) {
    std::array<int, 2> ends{};
    const bool has_pipe = pipe2(ends.data(), O_CLOEXEC) == 0;
    const pid_t child = has_pipe ? fork() : -1;
    if (child < 0)
        return subject + " cannot be tried: " + std::strerror(errno);
    if (child == 0)
        run_child(ends[1], attempt);
    close(ends[1]);

    const outcome end = wait_for_answer(ends[0], limit);
    close(ends[0]);
    if (end == outcome::hangs)
        kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    if (end == outcome::hangs)
        return subject + " does not finish a trial run within " + std::to_string(limit.count())
               + " seconds";
    return end == outcome::ended ? subject + describe_end(status) : std::string{};
}
