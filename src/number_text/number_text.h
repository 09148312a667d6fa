#pragma once
/// Numbers as a parameter's display shows them, in at most 8 characters. All is [any].

#include <string>

/// The value in 8 characters, its fraction truncated: "-6.02059". What does not fit with its point
/// is "Huge!" or "-Huge!": from 10000000 up, from -1000000 down. Not a number is "NaN".
[[nodiscard]] std::string number_text(float value);

/// An integer of up to 8 digits; beyond, "Huge!" or "-Huge!".
[[nodiscard]] std::string integer_text(int value);

/// A linear gain in dB, as number_text has it; "-oo" from 0 down.
[[nodiscard]] std::string decibel_text(float gain);
