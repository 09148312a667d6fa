#pragma once
/// A parameter's value on its way to the panel, from whatever thread set it. The latest one counts.

#include "realtime/nonblocking.h"

#include <atomic>
#include <cmath>
#include <limits>
#include <optional>

class ValueSlot {
public:
    void put(float value) noexcept NONBLOCKING {
        waiting.store(value, std::memory_order_relaxed);
    } ///< [any]

    /// Returns what was put since the last time. [ui]
    std::optional<float> take() noexcept NONBLOCKING {
        const float value = waiting.exchange(nothing, std::memory_order_relaxed);
        return std::isnan(value) ? std::nullopt : std::optional(value);
    }

private:
    static constexpr float nothing = std::numeric_limits<float>::quiet_NaN();

    std::atomic<float> waiting = nothing;
};

static_assert(std::atomic<float>::is_always_lock_free);
