#pragma once
/// Texts in the room that the interface has for them. All is [any].

#include <cstddef>
#include <string_view>

/// Cuts what does not fit. `size` counts the terminating zero and is at least 1.
inline void clap_write_text(char* dest, std::size_t size, std::string_view text) {
    dest[text.copy(dest, size - 1)] = '\0';
}

template <std::size_t size>
void clap_write_text(char (&dest)[size], std::string_view text) {
    clap_write_text(dest, size, text);
}
