#pragma once
/// Pages of memory with one behind them that nobody may touch.

#include <cstddef>

constexpr std::size_t page_size = 4096;

/// Fresh pages, the last of which nobody may touch; null when there are none.
[[nodiscard]] char* guarded_pages_map(std::size_t nb_pages);

void guarded_pages_unmap(char* pages, std::size_t nb_pages);
