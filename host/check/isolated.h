#pragma once
/// Judges a row in a process of its own, so that a crash or a hang is that row's result and nobody
/// else's. Functions are [setup], before the judge starts a thread.

#include "check/judge.h"
#include "check/rows.h"

/// A row's process once it is over.
struct isolated_end {
    std::string crash{}; ///< or hang, for the user to read; empty if the row came to its end
    bool is_hang;
    const report& told; ///< valid until the next row's
};

[[nodiscard]] isolated_end judge_isolated(const row& judged, const std::filesystem::path& file,
                                          const check_request& request);

/// Judges a row in this process.
void judge_here(const row& judged, const std::filesystem::path& file, std::uint32_t seed,
                report& shared);

#ifdef _WIN32
/// Judges the row that the request names, and ends the process.
[[noreturn]] void judge_for_parent(const check_request& request);
#endif
