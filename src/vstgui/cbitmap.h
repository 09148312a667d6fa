#pragma once
/// A bitmap resource of the library, shown where it lies: nothing is copied or converted before it
/// is drawn, so that many panels cost no more than one; packed ones are unpacked first. All is
/// [ui], but that one may be created and forgotten in [setup].

#include "vstgui/cdrawcontext.h"
#include "vstgui/creferencecounter.h"
#include "vstgui/geometry.h"

#include <span>
#include <vector>

class CBitmap final : public CReferenceCounter {
public:
    /// A number without a bitmap, or one that is not of 24 bits and uncompressed or packed, gives
    /// an empty picture.
    explicit CBitmap(int resourceNumber);

    [[nodiscard]] int getWidth() const { return width; }
    [[nodiscard]] int getHeight() const { return height; }

    /// Fills `rect` from the bitmap's pixel at `offset` on, as far as the bitmap and the context's
    /// clip go.
    void draw(CDrawContext& context, const CRect& rect, CPoint offset = {}) const;

private:
    ~CBitmap() override = default;

    std::vector<unsigned char> unpacked{};
    std::span<const unsigned char> pixels{}; ///< blue, green, red; rows from the bottom
    int width = 0;
    int height = 0;
};
