#pragma once
/// What the readers of the instrument's texts share. All is [setup].

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>

/// Returns whether the text is a number, whole.
template <typename Number>
bool read_number(std::string_view text, Number& number) {
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    const auto [rest, error] = std::from_chars(begin, end, number);
    return error == std::errc{} && rest == end;
}

/// Takes the text up to the next `separator`, or all of it.
inline std::string_view take_until(std::string_view& text, char separator) {
    const std::string_view taken = text.substr(0, text.find(separator));
    text.remove_prefix(std::min(taken.size() + 1, text.size()));
    return taken;
}
