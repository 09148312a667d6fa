#include "korvel/limited_square.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double pi = std::numbers::pi;

struct square_wave {
    double radians_a_second, rate, start_phase;

    double phase(std::size_t i) const {
        return radians_a_second * static_cast<double>(i) / rate + start_phase;
    }

    bool is_high(std::size_t i) const { return std::sin(phase(i)) > 0; }

    /// The first sample after i that differs from it. The sine decides; the arithmetic only says
    /// where to look, and does not see a change beside a sample that lies on the zero itself.
    std::size_t next_change(std::size_t i, bool high) const {
        if (is_high(i + 1) != high)
            return i + 1;
        const double next_zero = (std::floor(phase(i) / pi) + 1) * pi;
        const double guess = std::floor((next_zero - start_phase) * rate / radians_a_second);
        std::size_t n = std::max(static_cast<std::size_t>(std::max(guess - 1, 0.0)), i + 1);
        while (is_high(n) == high)
            ++n;
        return n;
    }
};

} // namespace

limited_square::limited_square(const float* taps, int rate) : table_rate(rate) {
    double rest = 0;
    for (std::size_t m = 0; m < nb_fir_brickwall_taps; ++m)
        rest += static_cast<double>(taps[m]);
    unit_gain = static_cast<float>(rest);
    for (std::size_t m = 0; m < unreached.size(); ++m) {
        rest -= static_cast<double>(taps[m]);
        unreached[m] = static_cast<float>(rest);
    }
}

void limited_square::render(double frequency, double start_phase, std::span<float> samples) {
    const square_wave square{
        .radians_a_second = 2 * pi * frequency, .rate = table_rate, .start_phase = start_phase};
    lacking.assign(samples.size() + carried.size(), 0.0f);
    std::copy(carried.begin(), carried.end(), lacking.begin());
    for (std::size_t i = 0; i < samples.size();) {
        const bool high = square.is_high(i);
        step_to(high ? 0.5f : -0.5f, i);
        const std::size_t end = std::min(square.next_change(i, high), samples.size());
        const float reached = level * unit_gain;
        for (std::size_t n = i; n < end; ++n) // no later step reaches back here
            samples[n] = reached - lacking[n];
        i = end;
    }
    std::copy_n(&lacking[samples.size()], carried.size(), carried.begin());
}

void limited_square::step_to(float new_level, std::size_t i) {
    const float step = new_level - level;
    level = new_level;
    if (step == 0)
        return;
    float* __restrict after_step = &lacking[i];
    for (std::size_t m = 0; m < unreached.size(); ++m)
        after_step[m] += step * unreached[m];
}
