#pragma once
/// A swell pedal, which the instrument itself lacks: it scales the parameter Volume, whoever sets
/// that. All consoles of an instrument share one. All is [any] but for the constructor.

#include "plugin/plugin.h"

#include <atomic>

class swell {
public:
    /// The instrument outlives it. Throws a failure of misuse if it has no Volume. [setup]
    explicit swell(plugin& instrument);

    [[nodiscard]] bool moves(int parameter) const noexcept { return parameter == parameter_; }

    void set_pedal(float position) noexcept; ///< 0 to 1, which is full volume
    void set_volume(float volume) noexcept;  ///< at full pedal

    /// The player chose this volume by ear, with the pedal where it is.
    void touch(float volume) noexcept;

    /// What else moved the parameter since, a controller of the instrument's own, set the volume.
    void follow() noexcept;

private:
    void write() noexcept;

    plugin& instrument_;
    int parameter_;
    std::atomic<float> volume_;
    std::atomic<float> pedal_ = 1;
    std::atomic<float> written_; // last
};
