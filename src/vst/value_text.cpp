#include "vst/value_text.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace {

constexpr std::size_t nb_chars = 8; ///< sign, digits and point of a fixed-point text
constexpr VstInt32 int_limit = 100000000;

bool is_writable(const char* text, VstInt32 maxLen) { return text != nullptr && maxLen >= 0; }

const char* huge_text(bool is_negative) { return is_negative ? "-Huge!" : "Huge!"; }

/// The first `nb_digits` decimals of `magnitude`, none of them rounded.
std::string fraction_digits(double magnitude, std::size_t nb_digits) {
    double mantissa = std::fmod(magnitude, 1.0);
    for (std::size_t i = 0; i < nb_digits; ++i)
        mantissa *= 10;
    const std::string significant = std::to_string(static_cast<VstInt32>(mantissa));
    return std::string(nb_digits - significant.size(), '0') + significant;
}

} // namespace

void vst_strncpy(char* text, std::string_view source, VstInt32 maxLen) noexcept {
    if (!is_writable(text, maxLen))
        return;
    const auto capacity = static_cast<std::size_t>(maxLen);
    const std::size_t length = source.copy(text, capacity);
    std::fill(text + length, text + capacity + 1, '\0');
}

void vst_strncat(char* text, std::string_view source, VstInt32 maxLen) noexcept {
    if (!is_writable(text, maxLen))
        return;
    char* end = std::find(text, text + maxLen, '\0');
    vst_strncpy(end, source, static_cast<VstInt32>(text + maxLen - end));
}

void float_to_text(float value, char* text, VstInt32 maxLen) {
    if (std::isnan(value))
        return vst_strncpy(text, "NaN", maxLen);

    const bool is_negative = value < 0;
    const double magnitude = std::fabs(static_cast<double>(value));
    const double limit = is_negative ? 1e6 : 1e7; // the sign takes a digit's place
    if (magnitude >= limit)
        return vst_strncpy(text, huge_text(is_negative), maxLen);

    std::string whole = is_negative ? "-" : "";
    whole += std::to_string(static_cast<VstInt32>(magnitude));
    whole += '.';
    vst_strncpy(text, whole, maxLen);
    if (whole.size() < nb_chars)
        vst_strncat(text, fraction_digits(magnitude, nb_chars - whole.size()), maxLen);
}

void int_to_text(VstInt32 value, char* text, VstInt32 maxLen) {
    if (value >= int_limit || value <= -int_limit)
        return vst_strncpy(text, huge_text(value < 0), maxLen);
    vst_strncpy(text, std::to_string(value), maxLen);
}
