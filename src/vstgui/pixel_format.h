#pragma once
/// How an X server wants its pixels: the visual's channels in the depth's bytes, in its own order.
/// All is [ui].

#include "vstgui/cdrawcontext.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>
#include <xcb/xcb.h>

class PixelFormat {
public:
    /// Nothing when the screen's own visual does not mix its colours from channels.
    [[nodiscard]] static std::optional<PixelFormat> of(const xcb_setup_t* setup,
                                                       const xcb_screen_t& screen);

    [[nodiscard]] std::size_t stride(int width) const; ///< bytes of a row

    /// Replaces `bytes` by rows of the picture, each of stride bytes.
    void pack(const CDrawContext& picture, const CRect& area,
              std::vector<std::uint8_t>& bytes) const;

    [[nodiscard]] std::uint8_t getDepth() const { return depth; }

private:
    using channel_table = std::array<std::uint32_t, 256>; ///< pixel bits of a channel's value

    [[nodiscard]] static channel_table channel(std::uint32_t mask);

    channel_table red{}, green{}, blue{};
    std::uint32_t opaque = 0; ///< bits that belong to no colour, all set
    std::uint8_t depth = 0;
    std::size_t pixel_bytes = 0;
    std::size_t pad_bytes = 0;
    bool big_endian = false;
};
