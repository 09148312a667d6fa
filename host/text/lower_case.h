#pragma once
/// Words that users write with large letters or small ones.

#include <string>

/// ASCII letters only, whatever the locale.
[[nodiscard]] std::string lower_case(std::string text);
