#pragma once
/// Runs a program for a test.

#include <map>
#include <string>
#include <vector>

struct process_result {
    int status = -1; ///< exit status, or 128 and the number of the signal that ended it
    std::string out{};
    std::string err{};
};

struct process_surroundings {
    std::string input_file = "/dev/null";
    std::string output_file{}; ///< receives standard output; empty: a pipe, captured in `out`
    std::string folder{};      ///< to run in; empty: the current one
    std::map<std::string, std::string> environment{};
};

[[nodiscard]] process_result process_run(const std::vector<std::string>& arguments,
                                         const process_surroundings& surroundings = {});
