#include "vstgui/child_process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace {

/// What a desktop program needs to find its display, its settings and its language. Everything else
/// of the host's (preloaded libraries, library paths of a bundle, toolkit modules) stays away.
bool is_passed_on(std::string_view variable) {
    constexpr std::array<std::string_view, 10> names{"HOME=",       "USER=",
                                                     "LOGNAME=",    "PATH=",
                                                     "DISPLAY=",    "WAYLAND_DISPLAY=",
                                                     "XAUTHORITY=", "DBUS_SESSION_BUS_ADDRESS=",
                                                     "LANG=",       "LANGUAGE="};
    constexpr std::array<std::string_view, 4> families{"XDG_", "LC_", "KDE_", "DESKTOP_"};
    const auto begins = [&](std::string_view start) { return variable.starts_with(start); };
    return std::ranges::any_of(names, begins) || std::ranges::any_of(families, begins);
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
    : pid(std::exchange(other.pid, 0)), output_fd(other.output_fd), finished(other.finished) {}

ChildProcess::~ChildProcess() {
    if (pid == 0)
        return;
    close(output_fd);
    if (!finished) // where the host has its children reaped, a finished one's number may be
                   // another's
        kill(pid, SIGTERM);
    while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
    }
}

bool ChildProcess::read(std::string& text, int timeout_ms) {
    pollfd ready{.fd = output_fd, .events = POLLIN, .revents = 0};
    if (poll(&ready, 1, timeout_ms) <= 0)
        return true;
    std::array<char, 512> piece;
    const ssize_t nb_read = ::read(output_fd, piece.data(), piece.size());
    if (nb_read < 0 && errno == EINTR)
        return true;
    finished = nb_read <= 0;
    if (!finished)
        text.append(piece.data(), static_cast<std::size_t>(nb_read));
    return !finished;
}
