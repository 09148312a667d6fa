#pragma once
/// A plug-in's parameters by the names that users write. Each function throws a failure of misuse
/// that says what was expected.

#include "plugin/plugin.h"

#include <string>
#include <vector>

struct parameter_setting {
    std::string name;
    float value; ///< 0 to 1
};

/// "Name=value" with a value from 0 to 1, or on or off.
[[nodiscard]] parameter_setting parse_setting(const std::string& text);

[[nodiscard]] std::vector<std::string> parameter_names(plugin& instrument);

/// The index of the parameter of that name, or else of the only one whose name differs from it by
/// nothing but upper and lower case.
[[nodiscard]] int find_parameter(const std::vector<std::string>& names, const std::string& name);
