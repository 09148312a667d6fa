#pragma once
/// The picture that a frame is composed on before any of it is put on the screen. All is [ui].

#include "vstgui/geometry.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

class CDrawContext {
public:
    /// A black picture.
    CDrawContext(int width, int height)
        : area{0, 0, width, height},
          clip(area),
          pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {}

    [[nodiscard]] const CRect& bounds() const { return area; }

    /// Drawing leaves everything outside of the clip as it is.
    void setClip(const CRect& rect) { clip = rect.intersection(area); }
    [[nodiscard]] const CRect& getClip() const { return clip; }

    /// Pixels are 0x00RRGGBB.
    [[nodiscard]] std::span<std::uint32_t> row(int y) {
        return std::span(pixels).subspan(start(y), start(1));
    }
    [[nodiscard]] std::span<const std::uint32_t> row(int y) const {
        return std::span(pixels).subspan(start(y), start(1));
    }

private:
    [[nodiscard]] std::size_t start(int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(area.width());
    }

    CRect area;
    CRect clip;
    std::vector<std::uint32_t> pixels; ///< row by row from the top
};
