#pragma once
/// A parameter's value in the words that a display shows. All is [any], as far as the parameter's
/// value is.

#include "control/control.h"

#include <string>

/// The value as the parameter's unit has it: "ON" or "OFF", decibels, "440.000000 Hz", "50 %", or a
/// plain number.
[[nodiscard]] std::string parameter_text(const parameter& param, float value);
