#include "vstgui/resource.h"

#include <cstdint>

/// What the library's maker links in: a record a bitmap, ended by number 0. Offsets count from the
/// table's own start, so that loading the library relocates nothing.
extern "C" {
struct embedded_bitmap {
    std::uint32_t number;
    std::uint32_t offset;
    std::uint32_t byte_size;
};
extern const embedded_bitmap vstgui_embedded_bitmaps[];
}

std::span<const unsigned char> find_bitmap_resource(int number) {
    if (number <= 0)
        return {};
    for (const embedded_bitmap* entry = vstgui_embedded_bitmaps; entry->number != 0; ++entry)
        if (entry->number == static_cast<std::uint32_t>(number))
            return {reinterpret_cast<const unsigned char*>(vstgui_embedded_bitmaps) + entry->offset,
                    entry->byte_size};
    return {};
}
