#include "conformance/guarded_memory.h"

#include "conformance/platform.h"
#include "conformance/trial.h"

#include <algorithm>

guarded_memory::guarded_memory(std::size_t size)
    : nb_bytes(size),
      nb_pages(size / page_size + 2),
      mapping(map_guarded_pages(nb_pages)),
      bytes(mapping + (nb_pages - 1) * page_size - size) {
    refill();
}

guarded_memory::guarded_memory(std::string_view text) : guarded_memory(text.size() + 1) {
    std::ranges::copy(text, bytes);
    bytes[text.size()] = '\0';
}

guarded_memory::~guarded_memory() { unmap_guarded_pages(mapping, nb_pages); }

void guarded_memory::refill() { std::fill(mapping, bytes + nb_bytes, untouched); }

bool guarded_memory::is_untouched() const {
    return std::all_of(bytes, bytes + nb_bytes, [](char byte) { return byte == untouched; });
}

bool guarded_memory::front_holds() const {
    return std::all_of(mapping, bytes, [](char byte) { return byte == untouched; });
}

std::string_view guarded_memory::text() const {
    const char* end = std::find(bytes, bytes + nb_bytes, '\0');
    if (end == bytes + nb_bytes)
        throw mismatch{"a text without an end"};
    return {bytes, end};
}
