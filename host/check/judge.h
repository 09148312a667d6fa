#pragma once
/// Judges plug-ins through their binary interface and tells the user. Functions are [setup].

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

struct check_request {
    std::vector<std::filesystem::path> files{};
    std::vector<std::string> starts{}; ///< of rows' names; none: all rows
    std::uint32_t seed = 1;
    int limit_seconds = 60; ///< that a row may take
    bool lists = false;     ///< the rows instead of judging
    bool is_verbose = false;

    /// What the judge asks of its own program where processes cannot be forked: judge one row and
    /// leave the report in shared memory of that name.
    std::string row{};
    std::string shared{};
};

/// Returns the exit status: the worst of the files'. Throws a failure of misuse.
[[nodiscard]] int check_run(const check_request& request, std::FILE* p_output);
