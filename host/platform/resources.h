#pragma once
/// What this process holds of the system.

#include <cstddef>

struct resources {
    std::size_t nb_bytes = 0;        ///< of the heap; on Windows of all private memory
    std::size_t nb_mapped_bytes = 0; ///< besides the heap
    long nb_threads = 0;
    long nb_handles =
        0;             ///< files, connections, objects of the kernel; on Windows the next free one
    long nb_slots = 0; ///< the next free thread-local one
    long nb_windows = 0; ///< windows and drawing objects, where the system counts them apart
};

[[nodiscard]] resources resources_in_use();
