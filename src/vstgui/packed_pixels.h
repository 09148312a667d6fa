#pragma once
/// The pixels of bitmaps as art/make_bitmaps packs them, to a seventh of their size. [any]

#include <cstddef>
#include <span>
#include <vector>

/// Returns rows of `stride` bytes, from the bottom, which begin with blue, green and red of each
/// pixel; nothing where it is not pixels of that many columns and rows that are packed.
[[nodiscard]] std::vector<unsigned char> unpack_pixels(std::span<const unsigned char> packed,
                                                       std::size_t nb_columns, std::size_t nb_rows,
                                                       std::size_t stride);
