#include "platform/file_dialog/child_process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <string_view>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr std::chrono::milliseconds patience = 500ms; ///< with a program that is about to end

/// What a desktop program needs to find its display, its settings and its language: the beginnings
/// of its variables. Everything else of the host's stays away: preloaded libraries, library paths
/// of a bundle, toolkit modules, and the tokens of the host's own start.
constexpr std::string_view passed_on[] = {
    "HOME=",
    "USER=",
    "LOGNAME=",
    "PATH=",
    "DISPLAY=",
    "WAYLAND_DISPLAY=",
    "XAUTHORITY=",
    "DBUS_SESSION_BUS_ADDRESS=",
    "LANG=",
    "LANGUAGE=",
    "LC_",
    "DESKTOP_SESSION=",
    "KDE_FULL_SESSION=",
    "KDE_SESSION_",
    "XDG_CACHE_HOME=",
    "XDG_CONFIG_",
    "XDG_CURRENT_DESKTOP=",
    "XDG_DATA_",
    "XDG_MENU_PREFIX=",
    "XDG_RUNTIME_DIR=",
    "XDG_SESSION_",
    "XDG_STATE_HOME=",
};

bool is_passed_on(std::string_view variable) {
    return std::ranges::any_of(passed_on, [variable](std::string_view beginning) {
        return variable.starts_with(beginning);
    });
}

std::vector<char*> clean_environment() {
    std::vector<char*> variables;
    for (char** variable = environ; *variable; ++variable)
        if (is_passed_on(*variable))
            variables.push_back(*variable);
    variables.push_back(nullptr);
    return variables;
}

std::vector<char*> arguments_of(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str())); // the call's type; not written
    arguments.push_back(nullptr);
    return arguments;
}

/// Starts it with `output_fd` as its standard output. Returns 0 on failure.
pid_t spawn(const std::vector<std::string>& command, int output_fd) {
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&files, output_fd, STDOUT_FILENO);
    posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);

    sigset_t none, all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &all);

    pid_t pid = 0;
    const int error = posix_spawnp(&pid, command[0].c_str(), &files, &attributes,
                                   arguments_of(command).data(), clean_environment().data());
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    return error == 0 ? pid : 0;
}

} // namespace

std::optional<ChildProcess> ChildProcess::run(const std::vector<std::string>& command) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return std::nullopt;
    const pid_t pid = spawn(command, ends[1]);
    close(ends[1]);
    if (pid == 0) {
        close(ends[0]);
        return std::nullopt;
    }
    return ChildProcess(pid, ends[0]);
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : pid(std::exchange(other.pid, 0)),
      output_fd(std::exchange(other.output_fd, -1)),
      status(other.status) {}

ChildProcess::~ChildProcess() {
    if (output_fd >= 0)
        close(output_fd);
    if (endsWithin(0ms))
        return;
    kill(pid, SIGTERM);
    if (endsWithin(patience))
        return;
    kill(pid, SIGKILL);
    endsWithin(patience); // not for ever: a disk that hangs holds up even this
}

bool ChildProcess::read(std::string& text, int timeout_ms) {
    // Asked first: all that an ended one has printed can then be seen.
    const bool ended = endsWithin(0ms);
    pollfd ready{.fd = output_fd, .events = POLLIN, .revents = 0};
    if (poll(&ready, 1, timeout_ms) <= 0)
        return !ended; // a program that it started may keep the output open
    std::array<char, 512> piece;
    const ssize_t nb_read = ::read(output_fd, piece.data(), piece.size());
    if (nb_read < 0 && errno == EINTR)
        return true;
    if (nb_read > 0)
        text.append(piece.data(), static_cast<std::size_t>(nb_read));
    return nb_read > 0;
}

bool ChildProcess::succeeds() { return endsWithin(patience) && status == 0; }

/// A host that reaps its children itself makes waitpid fail once this one has ended.
bool ChildProcess::endsWithin(std::chrono::milliseconds time) {
    const auto deadline = std::chrono::steady_clock::now() + time;
    while (pid != 0 && waitpid(pid, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        std::this_thread::sleep_for(5ms);
    }
    pid = 0;
    return true;
}
