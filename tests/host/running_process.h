#pragma once
/// A program that runs beside a test, and what it prints: on standard output alone, or in a
/// terminal.

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

class running_process {
public:
    enum class where { beside, in_terminal };

    explicit running_process(const std::vector<std::string>& arguments,
                             where place = where::beside) {
        int ends[2] = {-1, -1};
        posix_spawn_file_actions_t files;
        posix_spawn_file_actions_init(&files);
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        if (place == where::in_terminal) {
            ends[0] = posix_openpt(O_RDWR | O_NOCTTY);
            grantpt(ends[0]);
            unlockpt(ends[0]);
            posix_spawn_file_actions_addopen(&files, STDIN_FILENO, ptsname(ends[0]), O_RDWR, 0);
            posix_spawn_file_actions_adddup2(&files, STDIN_FILENO, STDOUT_FILENO);
            posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
        } else if (pipe(ends) == 0) {
            posix_spawn_file_actions_adddup2(&files, ends[1], STDOUT_FILENO);
            posix_spawn_file_actions_addclose(&files, ends[1]);
        }
        posix_spawn_file_actions_addclose(&files, ends[0]);
        std::vector<char*> words;
        for (const std::string& argument : arguments)
            words.push_back(const_cast<char*>(argument.c_str()));
        words.push_back(nullptr);
        posix_spawnp(&process_, words[0], &files, &attributes, words.data(), environ);
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&files);
        close(ends[1]);
        output_ = ends[0];
    }
    ~running_process() {
        end(SIGKILL);
        close(output_);
    }
    running_process(const running_process&) = delete;
    running_process& operator=(const running_process&) = delete;

    /// Whether it prints these words within a minute, past those that were found before.
    [[nodiscard]] bool says(const std::string& words) {
        using clock = std::chrono::steady_clock;
        const auto deadline = clock::now() + std::chrono::minutes{1};
        pollfd stream{output_, POLLIN, 0};
        while (text_.find(words) == text_.npos) {
            char piece[4096];
            const auto rest = deadline - clock::now();
            const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(rest).count();
            if (ms <= 0 || poll(&stream, 1, static_cast<int>(ms)) <= 0)
                return false;
            const auto nb = read(output_, piece, sizeof piece);
            if (nb <= 0)
                return false;
            text_.append(piece, static_cast<std::size_t>(nb));
        }
        text_.erase(0, text_.find(words) + words.size());
        return true;
    }

    /// Into its terminal.
    void type(const std::string& keys) const { (void)!write(output_, keys.data(), keys.size()); }

    void send_signal(int number) const { kill(process_, number); }

    /// Its exit status, or 128 and the number of the signal that ended it.
    int end(int signal) {
        if (process_ <= 0)
            return -1;
        kill(process_, signal);
        int status = 0;
        waitpid(process_, &status, 0);
        process_ = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

    [[nodiscard]] const std::string& rest() const { return text_; }

private:
    pid_t process_ = 0;
    int output_ = -1;
    std::string text_{};
};
