#include "vstgui/resource.h"

#include "platform/module_handle/module_handle.h"

#include <windows.h>

std::span<const unsigned char> find_bitmap_resource(int number) {
    const auto library = static_cast<HMODULE>(hInstance);
    HRSRC found = nullptr;
    for (const int kind : {2, 10}) // RT_BITMAP, or RT_RCDATA for those that are packed
        if (!found)
            found = FindResourceW(library, MAKEINTRESOURCEW(number), MAKEINTRESOURCEW(kind));
    HGLOBAL loaded = found ? LoadResource(library, found) : nullptr;
    if (!loaded)
        return {};
    return {static_cast<const unsigned char*>(LockResource(loaded)),
            SizeofResource(library, found)};
}
