#pragma once
/// Texts in a host's buffer. Functions are [any].

#include "vst/interface.h"

#include <string_view>

/// Copies at most maxLen characters into `text` of maxLen + 1 bytes; the rest of them becomes zero.
/// A null `text` or a negative maxLen leaves all as it is.
void vst_strncpy(char* text, std::string_view source, VstInt32 maxLen) noexcept;
