#include "tests/host/process.h"

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using pipe_ends = std::array<int, 2>;

[[noreturn]] void become(const std::vector<std::string>& arguments,
                         const process_surroundings& surroundings, int out, int err) {
    dup2(open(surroundings.input_file.c_str(), O_RDONLY), STDIN_FILENO);
    if (!surroundings.output_file.empty())
        out = open(surroundings.output_file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    dup2(out, STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    if (!surroundings.folder.empty() && chdir(surroundings.folder.c_str()) != 0)
        _exit(126);
    for (const auto& [name, value] : surroundings.environment)
        setenv(name.c_str(), value.c_str(), 1);
    std::vector<char*> pointers;
    for (const std::string& argument : arguments)
        pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    execv(pointers[0], pointers.data());
    _exit(127);
}

/// Reads both pipes at once, so that neither blocks the writer.
void read_both(int out, int err, process_result& result) {
    std::array<pollfd, 2> sources{{{out, POLLIN, 0}, {err, POLLIN, 0}}};
    const std::array<std::string*, 2> texts{&result.out, &result.err};
    std::array<char, 65536> piece;
    for (int nb_open = 2; nb_open > 0;) {
        poll(sources.data(), sources.size(), -1);
        for (std::size_t i = 0; i < sources.size(); ++i) {
            if (sources[i].fd < 0 || sources[i].revents == 0)
                continue;
            const auto nb_bytes = read(sources[i].fd, piece.data(), piece.size());
            if (nb_bytes > 0) {
                texts[i]->append(piece.data(), static_cast<std::size_t>(nb_bytes));
                continue;
            }
            sources[i].fd = -1;
            --nb_open;
        }
    }
}

} // namespace

process_result process_run(const std::vector<std::string>& arguments,
                           const process_surroundings& surroundings) {
    pipe_ends out{};
    pipe_ends err{};
    process_result result;
    if (pipe2(out.data(), O_CLOEXEC) != 0 || pipe2(err.data(), O_CLOEXEC) != 0)
        return result;
    const pid_t child = fork();
    if (child == 0)
        become(arguments, surroundings, out[1], err[1]);
    close(out[1]);
    close(err[1]);
    read_both(out[0], err[0], result);
    close(out[0]);
    close(err[0]);
    int status = 0;
    waitpid(child, &status, 0);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return result;
}
