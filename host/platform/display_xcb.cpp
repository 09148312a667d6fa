#include "platform/display.h"

#include "platform/process.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <xcb/xcb.h>

namespace {

constexpr const char* server = "Xvfb";

xcb_connection_t* as_connection(void* p_connection) {
    return static_cast<xcb_connection_t*>(p_connection);
}

/// Returns 0 or the reason as a value of errno. Without clients the server ends by itself, so a
/// process that crashes leaves none behind; the number of its display comes through standard
/// output.
int spawn(pid_t& process, int output, int depth) {
    const std::string screen = "4096x3072x" + std::to_string(depth); // larger than any editor
    const std::array arguments{
        server,         "-displayfd", "1",   "-screen",    "0",
        screen.c_str(), "-nolisten",  "tcp", "-terminate", static_cast<const char*>(nullptr)};
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, output, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    const int error = posix_spawnp(&process, server, &files, nullptr,
                                   const_cast<char**>(arguments.data()), environ);
    posix_spawn_file_actions_destroy(&files);
    return error;
}

/// Closes the pipe's end, but not before the line's: the server ends if it cannot write all of it.
std::string read_line(int pipe_end) {
    std::string line;
    char next = 0;
    while (read(pipe_end, &next, 1) == 1 && next != '\n')
        line += next;
    close(pipe_end);
    return line;
}

} // namespace

void display::closer::operator()(void* p_connection) const {
    xcb_disconnect(as_connection(p_connection));
}

display::display(choice wanted, int depth) {
    if (wanted == choice::users) {
        p_connection_.reset(xcb_connect(nullptr, nullptr));
        if (xcb_connection_has_error(as_connection(p_connection_.get())) == 0)
            return;
    }
    start(depth);
    if (!error.empty())
        return;
    p_connection_.reset(xcb_connect(nullptr, nullptr));
    if (xcb_connection_has_error(as_connection(p_connection_.get())) != 0)
        error = "the display that Xvfb gives cannot be opened; set DISPLAY to another";
}

void display::start(int depth) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        error = std::string{"no display can be started: "} + std::strerror(errno);
        return;
    }
    const int reason = spawn(process_, ends[1], depth);
    close(ends[1]);
    const std::string number = read_line(ends[0]);
    if (reason == ENOENT)
        error = "there is no display, and no Xvfb to take its place; install the package xvfb";
    else if (number.empty())
        error = "there is no display, and Xvfb does not start; set DISPLAY to a display";
    else
        set_environment("DISPLAY", (":" + number).c_str());
    if (reason != 0)
        process_ = 0;
}

void display::send_signal(int number) const { kill(process_, number); }

void display::stop(int signal) {
    p_connection_.reset();
    if (const int ended = std::exchange(process_, 0)) {
        kill(ended, signal);
        waitpid(ended, nullptr, 0);
    }
}
