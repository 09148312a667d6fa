#include "probe/guarded_memory.h"

#include "platform/guarded_pages.h"

#include <algorithm>
#include <new>

guarded_memory::guarded_memory(std::size_t nb_bytes)
    : nb_bytes_{nb_bytes},
      nb_pages_{nb_bytes / page_size + 2},
      p_pages_{guarded_pages_map(nb_pages_)},
      p_bytes_{p_pages_ + (nb_pages_ - 1) * page_size - nb_bytes} {
    if (!p_pages_)
        throw std::bad_alloc{};
    refill();
}

guarded_memory::guarded_memory(std::string_view text) : guarded_memory{text.size() + 1} {
    std::ranges::copy(text, p_bytes_);
    p_bytes_[text.size()] = '\0';
}

guarded_memory::~guarded_memory() { guarded_pages_unmap(p_pages_, nb_pages_); }

void guarded_memory::refill() { std::fill(p_pages_, p_bytes_ + nb_bytes_, untouched); }

bool guarded_memory::is_untouched() const {
    return std::all_of(p_bytes_, p_bytes_ + nb_bytes_, [](char byte) { return byte == untouched; });
}

bool guarded_memory::front_holds() const {
    return std::all_of(p_pages_, p_bytes_, [](char byte) { return byte == untouched; });
}

std::optional<std::string_view> guarded_memory::text() const {
    const char* end = std::find(p_bytes_, p_bytes_ + nb_bytes_, '\0');
    if (end == p_bytes_ + nb_bytes_)
        return {};
    return std::string_view{p_bytes_, end};
}
