#include "report/meter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

void meter_take(meter& levels, std::span<float> samples) {
    for (float& sample : samples) {
        if (!std::isfinite(sample)) {
            ++levels.nb_invalid;
            sample = 0;
        }
        const float size = std::abs(sample);
        levels.peak = std::max(levels.peak, size);
        levels.sum_of_squares += static_cast<double>(size) * size;
        levels.nb_over += size > 1;
    }
    levels.nb_samples += samples.size();
}

double meter_rms(const meter& levels) {
    return levels.nb_samples == 0
               ? 0
               : std::sqrt(levels.sum_of_squares / static_cast<double>(levels.nb_samples));
}

std::string level_text(double gain) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f dBFS", 20 * std::log10(gain));
    return text.data();
}

double gain_from_decibels(double decibels) { return std::pow(10.0, decibels / 20); }
