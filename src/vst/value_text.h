#pragma once
/// Texts in a host's buffer: bounded strings, and numbers for a parameter's display.
/// Every `text` holds maxLen + 1 bytes and is terminated at text[maxLen] whatever its length; a
/// null `text` or a negative maxLen leaves all as it is. Functions are [any].

#include "vst/interface.h"

#include <string_view>

/// Copies at most maxLen characters; the rest of the buffer becomes zero.
void vst_strncpy(char* text, std::string_view source, VstInt32 maxLen) noexcept;

/// Appends to a terminated text until it is maxLen characters long.
void vst_strncat(char* text, std::string_view source, VstInt32 maxLen) noexcept;

/// Writes `value` in 8 characters, its fraction truncated: "-6.02059". What does not fit with its
/// point is "Huge!" or "-Huge!": from 10000000 up, from -1000000 down. Not a number is "NaN".
void float_to_text(float value, char* text, VstInt32 maxLen);

/// Writes an integer of up to 8 digits; beyond, "Huge!" or "-Huge!".
void int_to_text(VstInt32 value, char* text, VstInt32 maxLen);
