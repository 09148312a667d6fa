#pragma once
/// The bitmaps that the library brings along: resources on Windows, embedded bytes elsewhere. [any]

#include <span>

/// Returns the library's bitmap of that number, from its 40-byte information header on, or nothing.
/// It is there as long as the library.
[[nodiscard]] std::span<const unsigned char> find_bitmap_resource(int number);
