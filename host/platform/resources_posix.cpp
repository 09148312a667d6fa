#include "platform/resources.h"

#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <pthread.h>
#include <string>

namespace {

long nb_entries(const char* folder) {
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<long>(std::distance(begin(entries), end(entries)));
}

/// The heap's own growth is left out, for it keeps what was freed.
std::size_t mapped_bytes() {
    std::ifstream mappings("/proc/self/maps");
    std::size_t nb_bytes = 0;
    for (std::string line; std::getline(mappings, line);) {
        std::size_t length = 0;
        const auto start = std::stoull(line, &length, 16);
        const auto end = std::stoull(line.substr(length + 1), nullptr, 16);
        if (!line.ends_with("[heap]"))
            nb_bytes += static_cast<std::size_t>(end - start);
    }
    return nb_bytes;
}

long next_slot() {
    pthread_key_t slot = 0;
    pthread_key_create(&slot, nullptr);
    pthread_key_delete(slot);
    return static_cast<long>(slot);
}

} // namespace

resources resources_in_use() {
    const auto heap = mallinfo2();
    return {.nb_bytes = heap.uordblks + heap.hblkhd,
            .nb_mapped_bytes = mapped_bytes(),
            .nb_threads = nb_entries("/proc/self/task"),
            .nb_handles = nb_entries("/proc/self/fd"),
            .nb_slots = next_slot()};
}
