#include "player/parameter_text.h"

#include "number_text/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

namespace {

/// Truncated, and within the integers.
int percent(float value) {
    return static_cast<int>(std::clamp(static_cast<double>(value) * 100, -2e9, 2e9));
}

/// In ASCII's letters.
bool is_word(std::string_view text, std::string_view lower_case) {
    const auto lowered = [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    };
    return std::ranges::equal(text, lower_case, {}, lowered);
}

std::string_view trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

float value_of_number(const parameter& param, double number) {
    if (param.unit == "db")
        number = std::pow(10.0, number / 20);
    if (param.unit == "%")
        number /= 100;
    return static_cast<float>(number);
}

} // namespace

bool parameter_is_switch(const parameter& param) noexcept { return param.unit == "bin"; }

float parameter_nearest(const parameter& param, double number) noexcept {
    if (parameter_is_switch(param))
        return number >= 0.5 ? 1.0f : 0.0f;
    return static_cast<float>(std::clamp(number, 0.0, 1.0));
}

std::string parameter_text(const parameter& param, float value) {
    if (parameter_is_switch(param))
        return value > 0.5f ? "ON" : "OFF";
    if (param.unit == "db")
        return decibel_text(value);
    if (param.unit == "hz")
        return std::to_string(value) + " Hz";
    if (param.unit == "%")
        return std::to_string(percent(value)) + " %";
    return number_text(value);
}

std::optional<float> parameter_value(const parameter& param, std::string_view text) {
    text = trimmed(text);
    if (parameter_is_switch(param) && (is_word(text, "on") || is_word(text, "off")))
        return is_word(text, "on") ? 1.0f : 0.0f;
    if (param.unit == "db" && text == decibel_text(0))
        return 0.0f;

    double number = 0;
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    const auto [rest, error] = std::from_chars(begin, end, number);
    const std::string_view unit = trimmed({rest, end});
    if (error != std::errc{} || !std::isfinite(number)
        || !(unit.empty() || is_word(unit, param.unit)))
        return std::nullopt;

    // Texts are truncated: where a number has another text than its own, half a digit more has it.
    const auto nb_decimals =
        static_cast<double>(rest - std::min(std::find(begin, rest, '.') + 1, rest));
    const double half_digit = std::copysign(0.5 * std::pow(10.0, -nb_decimals), number);
    for (const double read : {number, number + half_digit})
        if (parameter_text(param, value_of_number(param, read)) == text)
            return value_of_number(param, read);
    return value_of_number(param, number);
}
