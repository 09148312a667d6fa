#include "platform/guarded_pages.h"

#include <sys/mman.h>

char* guarded_pages_map(std::size_t nb_pages) {
    void* address = mmap(nullptr, nb_pages * page_size, PROT_READ | PROT_WRITE,
                         MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (address == MAP_FAILED)
        return nullptr;
    auto* pages = static_cast<char*>(address);
    mprotect(pages + (nb_pages - 1) * page_size, page_size, PROT_NONE);
    return pages;
}

void guarded_pages_unmap(char* pages, std::size_t nb_pages) { munmap(pages, nb_pages * page_size); }
