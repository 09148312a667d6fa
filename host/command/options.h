#pragma once
/// Options of the command line.

#include "text/number.h"

#include <CLI/CLI.hpp>
#include <string>

/// An option that takes a number within limits. The library reads numbers its own way (010 is 8),
/// and complains in words of its own.
template <typename Number, typename Target>
CLI::Option* add_number(CLI::App& app, const std::string& name, Target& target, Number low,
                        Number high, const std::string& description) {
    return app.add_option_function<std::string>(
        name,
        [&target, name, low, high](const std::string& text) {
            target = parse_within(name, text, low, high);
        },
        description);
}
