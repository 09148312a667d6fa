#pragma once
/// A registration is a text that players write: which stops are drawn and how the controls stand.
///
///   # Late night            the title
///   # Ballads.              a comment, on as many lines as it likes
///   Flute=on                a parameter's name and its value: on, off, or from 0 to 1
///
/// All is [setup].

#include "control/control.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct registration {
    struct setting {
        int index; ///< of the parameter
        float value;
    };
    std::string title{};
    std::string comment{}; ///< in one line
    std::vector<setting> settings{};
};

/// Returns nothing for a text with a line that is none of these, or that names a parameter which
/// the registry has not, and for one that sets nothing.
[[nodiscard]] std::optional<registration> registration_read(std::string_view text,
                                                            const control& registry);
