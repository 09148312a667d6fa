#pragma once
/// When messages came and which frames of the sound that means: with a delay that covers the
/// unevenness of threads, they are heard as evenly as they were played. Times are in seconds of one
/// clock that runs on. Each object belongs to one thread.

#include <cstddef>
#include <optional>

/// Messages of one input, whose driver tells how long after each other they came.
class arrival_clock {
public:
    /// When a message came that is handed over now; `delta` after the one before.
    double arrival(double delta, double now) noexcept;

private:
    std::optional<double> last_{};
};

/// Blocks of sound that are asked for at about even times.
class block_clock {
public:
    block_clock(std::size_t nb_frames, int rate_hz);

    /// A block is asked for.
    void begin(double now) noexcept;

    /// The frame of this block that plays what came then; nothing if a later block does. What comes
    /// too late for its frame is played at once, and the delay grows by as much.
    [[nodiscard]] std::optional<std::size_t> frame(double arrival) noexcept;

    /// From a message to the block that has its frame, at most: a block, and how late threads have
    /// been lately.
    [[nodiscard]] double delay() const { return block_seconds_ + lateness_; }

private:
    void restart(double now) noexcept;

    std::size_t nb_frames_;
    double block_seconds_;
    double begin_ = 0, end_ = 0; // of this block's share of time, which is played later
    double next_end_ = 0;
    double period_ = 0; // as the sound's own clock has it
    double lateness_ = 0;
};
