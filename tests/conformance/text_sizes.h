#pragma once
/// Bytes that hosts have for a parameter's texts, their terminating zeros included.

#include <cstddef>

constexpr std::size_t label_size = 8;
constexpr std::size_t display_size = 9;
constexpr std::size_t name_size = 11; ///< "BassChords" fills it
