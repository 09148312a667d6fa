#include "platform/guarded_pages.h"

#include <windows.h>

char* guarded_pages_map(std::size_t nb_pages) {
    auto* pages = static_cast<char*>(
        VirtualAlloc(nullptr, nb_pages * page_size, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    DWORD before = 0;
    if (pages)
        VirtualProtect(pages + (nb_pages - 1) * page_size, page_size, PAGE_NOACCESS, &before);
    return pages;
}

void guarded_pages_unmap(char* pages, std::size_t) { VirtualFree(pages, 0, MEM_RELEASE); }
