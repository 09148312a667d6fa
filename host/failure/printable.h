#pragma once
/// Names and other strangers' texts in messages.

#include <string>

/// The text with each control character as \x1B and the like, so that a name neither breaks a line
/// nor steers a terminal.
[[nodiscard]] std::string printable(const std::string& text);
