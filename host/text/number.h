#pragma once
/// Numbers in the command's options.

#include <charconv>
#include <optional>
#include <string>
#include <string_view>

/// All of the text, or nothing.
template <typename Number>
[[nodiscard]] std::optional<Number> parse_number(std::string_view text) {
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool is_whole = error == std::errc{} && end == text.data() + text.size();
    return is_whole && !text.empty() ? std::optional{number} : std::nullopt;
}

/// A number from `low` to `high`, a whole one if Number is an integer, for an option of that name.
/// For int, std::uint32_t and double. Throws a failure of misuse that says what was expected.
template <typename Number>
[[nodiscard]] Number parse_within(const std::string& option, const std::string& text, Number low,
                                  Number high);
