#include "text/number.h"

#include "failure/failure.h"

#include <cstdint>
#include <sstream>
#include <type_traits>

template <typename Number>
Number parse_within(const std::string& option, const std::string& text, Number low, Number high) {
    const auto number = parse_number<Number>(text);
    if (number && *number >= low && *number <= high)
        return *number;
    std::ostringstream sentence;
    sentence << option << " takes a " << (std::is_integral_v<Number> ? "whole " : "")
             << "number from " << low << " to " << high << "; \"" << text << "\" is none";
    throw failure{exit_misused, sentence.str()};
}

template int parse_within(const std::string&, const std::string&, int, int);
template std::uint32_t parse_within(const std::string&, const std::string&, std::uint32_t,
                                    std::uint32_t);
template double parse_within(const std::string&, const std::string&, double, double);
