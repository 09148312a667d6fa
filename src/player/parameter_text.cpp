#include "player/parameter_text.h"

#include "number_text/number_text.h"

#include <algorithm>

namespace {

/// Truncated, and within the integers.
int percent(float value) {
    return static_cast<int>(std::clamp(static_cast<double>(value) * 100, -2e9, 2e9));
}

} // namespace

std::string parameter_text(const parameter& param, float value) {
    if (param.unit == "bin")
        return value > 0.5f ? "ON" : "OFF";
    if (param.unit == "db")
        return decibel_text(value);
    if (param.unit == "hz")
        return std::to_string(value) + " Hz";
    if (param.unit == "%")
        return std::to_string(percent(value)) + " %";
    return number_text(value);
}
