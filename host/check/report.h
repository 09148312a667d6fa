#pragma once
/// What a row's process tells of itself as it goes, in memory that it shares with the judge: what
/// was written there stays when the process crashes or hangs. Functions are [any].

#include <array>
#include <atomic>
#include <string_view>

enum class verdict : int { none, ok, warning, failed, skipped };

constexpr long no_frame = -1; ///< what is told happened at none

struct report {
    std::atomic<int> rate = 0;
    std::atomic<int> block = 0;
    std::atomic<long> frame = no_frame;
    std::atomic<verdict> result = verdict::none; ///< none until the row came to its end
    std::array<char, 256> doing{};               ///< texts end with zero
    std::array<char, 1024> seen{};
};
static_assert(std::atomic<long>::is_always_lock_free); // as processes share no locks

/// Cuts what is too long.
template <std::size_t nb_bytes>
void report_write(std::array<char, nb_bytes>& to, std::string_view text) {
    to[text.copy(to.data(), nb_bytes - 1)] = 0;
}
