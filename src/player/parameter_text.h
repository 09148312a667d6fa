#pragma once
/// The values that a parameter has, and the words that a display shows for them. All is [any], as
/// far as the parameter's value is.

#include "control/control.h"
#include "realtime/nonblocking.h"

#include <optional>
#include <string>
#include <string_view>

/// Whether there is nothing between off and on.
[[nodiscard]] bool parameter_is_switch(const parameter& param) noexcept NONBLOCKING;

/// The nearest value to that number, from 0 to 1; of a switch, one of the two.
[[nodiscard]] float parameter_nearest(const parameter& param, double number) noexcept NONBLOCKING;

/// The value as the parameter's unit has it: "ON" or "OFF", decibels, "440.000000 Hz", "50 %", or a
/// plain number.
[[nodiscard]] std::string parameter_text(const parameter& param, float value);

/// Reads such a text back: the value has that text again. Reads also what a user may type, a number
/// with fewer digits, with or without the unit; a switch takes 0 and 1, and words in any case.
/// Returns nothing for any other text. The value need not lie within the parameter's range.
[[nodiscard]] std::optional<float> parameter_value(const parameter& param, std::string_view text);
