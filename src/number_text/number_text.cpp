#include "number_text/number_text.h"

#include <cmath>

namespace {

constexpr std::size_t nb_chars = 8; ///< sign, digits and point of a fixed-point text
constexpr int int_limit = 100000000;

const char* huge_text(bool is_negative) { return is_negative ? "-Huge!" : "Huge!"; }

/// The first `nb_digits` decimals of `magnitude`, none of them rounded.
std::string fraction_digits(double magnitude, std::size_t nb_digits) {
    double mantissa = std::fmod(magnitude, 1.0);
    for (std::size_t i = 0; i < nb_digits; ++i)
        mantissa *= 10;
    const std::string significant = std::to_string(static_cast<int>(mantissa));
    return std::string(nb_digits - significant.size(), '0') + significant;
}

} // namespace

std::string number_text(float value) {
    if (std::isnan(value))
        return "NaN";
    const bool is_negative = value < 0;
    const double magnitude = std::fabs(static_cast<double>(value));
    const double limit = is_negative ? 1e6 : 1e7; // the sign takes a digit's place
    if (magnitude >= limit)
        return huge_text(is_negative);

    std::string text = is_negative ? "-" : "";
    text += std::to_string(static_cast<int>(magnitude));
    text += '.';
    if (text.size() < nb_chars)
        text += fraction_digits(magnitude, nb_chars - text.size());
    return text;
}

std::string integer_text(int value) {
    return value >= int_limit || value <= -int_limit ? huge_text(value < 0) : std::to_string(value);
}

std::string decibel_text(float gain) {
    if (gain <= 0)
        return "-oo";
    return number_text(static_cast<float>(20 * std::log10(static_cast<double>(gain))));
}
