#include "vstgui/cbitmap.h"

#include "vstgui/packed_pixels.h"
#include "vstgui/resource.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

/// What stands before the pixels of a device-independent bitmap.
struct bitmap_header {
    std::uint32_t byte_size;
    std::int32_t width;
    std::int32_t height;
    std::uint16_t planes;
    std::uint16_t bits_per_pixel;
    std::uint32_t compression;
    std::uint32_t unused[5];
};

static_assert(sizeof(bitmap_header) == 40);

constexpr std::uint32_t uncompressed = 0;
constexpr std::uint32_t packed = 1000; ///< as art/make_bitmaps does it

constexpr int max_side = 1 << 14;

bool is_known(const bitmap_header& header) {
    return header.byte_size == sizeof header && header.bits_per_pixel == 24
           && (header.compression == uncompressed || header.compression == packed)
           && header.width > 0 && header.width <= max_side && header.height > 0
           && header.height <= max_side;
}

/// Bytes of a row, which ends on a multiple of four.
std::size_t stride_of(int width) { return (static_cast<std::size_t>(width) * 3 + 3) / 4 * 4; }

} // namespace

CBitmap::CBitmap(int resourceNumber) {
    const std::span<const unsigned char> resource = find_bitmap_resource(resourceNumber);
    bitmap_header header;
    if (resource.size() < sizeof header)
        return;
    std::memcpy(&header, resource.data(), sizeof header);
    if (!is_known(header))
        return;
    const std::size_t stride = stride_of(header.width);
    const auto nb_columns = static_cast<std::size_t>(header.width);
    const auto nb_rows = static_cast<std::size_t>(header.height);
    pixels = resource.subspan(sizeof header);
    if (header.compression == packed)
        pixels = unpacked = unpack_pixels(pixels, nb_columns, nb_rows, stride);
    if (pixels.size() < stride * nb_rows)
        return;
    width = header.width;
    height = header.height;
}

void CBitmap::draw(CDrawContext& context, const CRect& rect, CPoint offset) const {
    const CPoint shift{rect.left - offset.x, rect.top - offset.y}; // of the bitmap's own corner
    const CRect shown =
        CRect{shift.x, shift.y, shift.x + width, shift.y + height}.intersection(rect).intersection(
            context.getClip());
    for (int y = shown.top; y < shown.bottom; ++y) {
        const auto row = static_cast<std::size_t>(height - 1 - (y - shift.y));
        const auto column = static_cast<std::size_t>(shown.left - shift.x);
        const unsigned char* from = pixels.data() + row * stride_of(width) + column * 3;
        const std::span<std::uint32_t> to = context.row(y);
        for (int x = shown.left; x < shown.right; ++x, from += 3)
            to[static_cast<std::size_t>(x)] =
                static_cast<std::uint32_t>(from[0] | from[1] << 8 | from[2] << 16);
    }
}
