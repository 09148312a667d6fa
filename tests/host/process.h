#pragma once
/// Runs a program for a test.

#include "tests/temporary_folder.h"

#include <array>
#include <cstdio>
#include <map>
#include <string>
#include <sys/wait.h>
#include <vector>

struct process_result {
    int status = -1; ///< exit status, or 128 and the number of the signal that ended it
    std::string out{};
    std::string err{};
};

struct process_surroundings {
    std::string input_file = "/dev/null";
    std::string folder = "."; ///< to run in
    std::string before{};     ///< what the shell reads before the program, such as "timeout 1"
    std::string after{};      ///< and after it, such as ">&-"; else `out` gets standard output
    std::map<std::string, std::string> environment{};
};

/// As one word of a shell's line, after a space. The text has no quotation marks.
inline std::string shell_word(const std::string& text) { return " '" + text + "'"; }

[[nodiscard]] inline process_result process_run(const std::vector<std::string>& arguments,
                                                const process_surroundings& surroundings = {}) {
    const temporary_folder own;
    std::string line = "cd" + shell_word(surroundings.folder) + " && exec env";
    for (const auto& [name, value] : surroundings.environment)
        line += shell_word(name + "=" + value);
    line += " " + surroundings.before;
    for (const std::string& argument : arguments)
        line += shell_word(argument);
    line += " <" + shell_word(surroundings.input_file) + " 2>" + shell_word(own / "err") + " "
            + surroundings.after;

    process_result result;
    std::FILE* p_out = popen(line.c_str(), "r");
    std::array<char, 65536> piece;
    while (const auto nb_bytes = std::fread(piece.data(), 1, piece.size(), p_out))
        result.out.append(piece.data(), nb_bytes);
    const int status = pclose(p_out);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.err = file_content(own / "err");
    return result;
}
