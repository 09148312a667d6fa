#include "check/isolated.h"

#include "failure/failure.h"
#include "platform/streams.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <ctime>
#include <new>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// Fresh memory for the report of the process that is forked next.
report& shared_report() {
    static void* const pages =
        mmap(nullptr, sizeof(report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED)
        throw std::bad_alloc{};
    return *new (pages) report;
}

/// Waits for the process, looking now and then; returns false when the time is over.
bool wait_for(pid_t process, std::chrono::seconds limit, int& status) {
    using clock = std::chrono::steady_clock;
    const auto deadline = clock::now() + limit;
    constexpr timespec pause{0, 2'000'000};
    while (waitpid(process, &status, WNOHANG) == 0) {
        if (clock::now() > deadline)
            return false;
        nanosleep(&pause, nullptr);
    }
    return true;
}

} // namespace

isolated_end judge_isolated(const row& judged, const std::filesystem::path& file,
                            const check_request& request) {
    report& shared = shared_report();
    std::fflush(nullptr); // or both would write what waits
    const pid_t child = fork();
    if (child < 0)
        throw failure{exit_failed, std::string{"no process can be started: "} + strerror(errno)};
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        setpgid(0, 0); // so that what it starts ends with it
        std::signal(SIGINT, SIG_DFL);
        std::signal(SIGTERM, SIG_DFL);
        request.is_verbose ? join_output_to_errors() : discard_output();
        judge_here(judged, file, request.seed, shared);
        _exit(0);
    }

    int status = 0;
    const std::chrono::seconds limit{request.limit_seconds};
    const bool is_hang = !wait_for(child, limit, status);
    kill(-child, SIGKILL);
    if (is_hang) {
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        return {"it hangs: the row is not done after " + std::to_string(limit.count()) + " seconds",
                true, shared};
    }
    if (WIFSIGNALED(status))
        return {std::string{"it crashes: "} + strsignal(WTERMSIG(status)), false, shared};
    if (shared.result == verdict::none)
        return {"it ends the process", false, shared};
    return {{}, false, shared};
}
