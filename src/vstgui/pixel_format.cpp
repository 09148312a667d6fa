#include "vstgui/pixel_format.h"

#include <algorithm>
#include <bit>
#include <span>

namespace {

const xcb_visualtype_t* find_visual(const xcb_screen_t& screen) {
    for (auto depths = xcb_screen_allowed_depths_iterator(&screen); depths.rem > 0;
         xcb_depth_next(&depths)) {
        const std::span visuals(xcb_depth_visuals(depths.data),
                                static_cast<std::size_t>(xcb_depth_visuals_length(depths.data)));
        for (const xcb_visualtype_t& visual : visuals)
            if (visual.visual_id == screen.root_visual)
                return &visual;
    }
    return nullptr;
}

const xcb_format_t* find_format(const xcb_setup_t* setup, std::uint8_t depth) {
    const std::span formats(xcb_setup_pixmap_formats(setup),
                            static_cast<std::size_t>(xcb_setup_pixmap_formats_length(setup)));
    const auto found = std::ranges::find(formats, depth, &xcb_format_t::depth);
    return found == formats.end() ? nullptr : &*found;
}

} // namespace

std::optional<PixelFormat> PixelFormat::of(const xcb_setup_t* setup, const xcb_screen_t& screen) {
    const xcb_visualtype_t* visual = find_visual(screen);
    const xcb_format_t* layout = find_format(setup, screen.root_depth);
    if (!visual || !layout || visual->_class != XCB_VISUAL_CLASS_TRUE_COLOR)
        return std::nullopt;
    PixelFormat format;
    format.red = channel(visual->red_mask);
    format.green = channel(visual->green_mask);
    format.blue = channel(visual->blue_mask);
    format.opaque = ~(visual->red_mask | visual->green_mask | visual->blue_mask);
    format.depth = screen.root_depth;
    format.pixel_bytes = layout->bits_per_pixel / 8u;
    format.pad_bytes = layout->scanline_pad / 8u;
    format.big_endian = setup->image_byte_order == XCB_IMAGE_ORDER_MSB_FIRST;
    return format;
}

PixelFormat::channel_table PixelFormat::channel(std::uint32_t mask) {
    const int shift = std::countr_zero(mask | 1u << 31);
    const std::uint64_t largest = mask >> shift;
    channel_table table;
    for (std::uint32_t value = 0; value < table.size(); ++value)
        table[value] = static_cast<std::uint32_t>((value * largest + 127) / 255) << shift;
    return table;
}

std::size_t PixelFormat::stride(int width) const {
    const std::size_t nb_bytes = static_cast<std::size_t>(width) * pixel_bytes;
    return (nb_bytes + pad_bytes - 1) / pad_bytes * pad_bytes;
}

void PixelFormat::pack(const CDrawContext& picture, const CRect& area,
                       std::vector<std::uint8_t>& bytes) const {
    bytes.assign(stride(area.width()) * static_cast<std::size_t>(area.height()), 0);
    for (int y = area.top; y < area.bottom; ++y) {
        std::uint8_t* to =
            bytes.data() + stride(area.width()) * static_cast<std::size_t>(y - area.top);
        const auto row = picture.row(y).subspan(static_cast<std::size_t>(area.left),
                                                static_cast<std::size_t>(area.width()));
        for (const std::uint32_t colour : row) {
            const std::uint32_t pixel =
                red[colour >> 16 & 0xFF] | green[colour >> 8 & 0xFF] | blue[colour & 0xFF] | opaque;
            for (std::size_t i = 0; i < pixel_bytes; ++i)
                *to++ =
                    static_cast<std::uint8_t>(pixel >> 8 * (big_endian ? pixel_bytes - 1 - i : i));
        }
    }
}
