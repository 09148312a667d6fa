#pragma once
/// What the command's arguments mean. Each function throws a failure of misuse that says what was
/// expected.

#include "plugin/plugin.h"

#include <bitset>
#include <string>
#include <vector>

/// ASCII letters only, whatever the locale.
[[nodiscard]] std::string lower_case(std::string text);

/// 16, 24 or 32.
[[nodiscard]] int parse_bits(const std::string& text);

/// Channel numbers and ranges such as "1,3-5", or "all". Bit 0 is channel 1.
[[nodiscard]] std::bitset<16> parse_channels(const std::string& list);

struct parameter_setting {
    std::string name;
    float value; ///< 0 to 1
};

/// "Name=value" with a value from 0 to 1, or on or off.
[[nodiscard]] parameter_setting parse_setting(const std::string& text);

/// The index of the parameter of that name, or else of the only one whose name differs from it by
/// nothing but upper and lower case.
[[nodiscard]] int find_parameter(const std::vector<std::string>& names, const std::string& name);

void apply_settings(plugin& instrument, const std::vector<std::string>& settings);

constexpr double default_peak_db = -1;

/// The level after --normalize may stand apart or not be there at all, so it is written into its
/// option: "--normalize -3" becomes "--normalize=-3", and one without a level gets the default.
void join_optional_level(std::vector<std::string>& arguments);
