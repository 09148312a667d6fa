#include "live/arrival_clock.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

// A thread that wakes later than that has not been told of the time between.
constexpr double max_wait = 0.005;

constexpr double max_blocks_off = 2;

constexpr double max_lateness = 0.02;
constexpr double forgets_lateness = 60; // seconds, to a third

// The loop's bandwidth in radians a block: slow beside the jitter, quick beside a clock's drift.
constexpr double omega = 0.02;

} // namespace

double arrival_clock::arrival(double delta, double now) noexcept {
    const double reckoned = last_.value_or(now) + delta;
    const bool is_likely = reckoned <= now && reckoned >= now - max_wait;
    last_ = is_likely ? reckoned : now;
    return *last_;
}

block_clock::block_clock(std::size_t nb_frames, int rate_hz)
    : nb_frames_{nb_frames}, block_seconds_{static_cast<double>(nb_frames) / rate_hz} {
    restart(0);
}

/// A delay-locked loop of second order with a damping of 1 / sqrt(2): F. Adriaensen, "Using a DLL
/// to filter time". A block's end was foretold as the one before began, so that no gap is between.
void block_clock::begin(double now) noexcept {
    const double error = now - next_end_;
    if (std::abs(error) > max_blocks_off * block_seconds_)
        return restart(now);
    begin_ = end_;
    end_ = next_end_;
    next_end_ += period_ + std::numbers::sqrt2 * omega * error;
    period_ += omega * omega * error;
    lateness_ -= lateness_ * block_seconds_ / forgets_lateness;
}

void block_clock::restart(double now) noexcept {
    period_ = block_seconds_;
    begin_ = now - period_;
    end_ = now;
    next_end_ = now + period_;
}

std::optional<std::size_t> block_clock::frame(double arrival) noexcept {
    const double from_begin = arrival + lateness_ - begin_;
    if (from_begin < 0)
        lateness_ = std::min(lateness_ - from_begin, max_lateness);
    const double at = std::max(0.0, from_begin / (end_ - begin_));
    const auto nb = static_cast<std::size_t>(at * static_cast<double>(nb_frames_));
    return nb < nb_frames_ ? std::optional{nb} : std::nullopt;
}
