#pragma once
/// What the command's arguments mean. Each function throws a failure of misuse that says what was
/// expected.

#include <bitset>
#include <string>
#include <vector>

/// 16, 24 or 32.
[[nodiscard]] int parse_bits(const std::string& text);

/// jack or alsa.
[[nodiscard]] std::string parse_via(const std::string& text);

/// Channel numbers and ranges such as "1,3-5", or "all". Bit 0 is channel 1.
[[nodiscard]] std::bitset<16> parse_channels(const std::string& list);

constexpr double default_peak_db = -1;

/// The level after --normalize may stand apart or not be there at all, so it is written into its
/// option: "--normalize -3" becomes "--normalize=-3", and one without a level gets the default.
void join_optional_level(std::vector<std::string>& arguments);
