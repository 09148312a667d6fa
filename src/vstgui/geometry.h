#pragma once
/// Places on a picture, in pixels from its top-left corner. [any]

#include <algorithm>

struct CPoint {
    int x = 0, y = 0;
};

/// Right and bottom lie outside.
struct CRect {
    int left = 0, top = 0, right = 0, bottom = 0;

    [[nodiscard]] constexpr int width() const { return right - left; }
    [[nodiscard]] constexpr int height() const { return bottom - top; }
    [[nodiscard]] constexpr bool empty() const { return left >= right || top >= bottom; }

    [[nodiscard]] constexpr bool contains(CPoint point) const {
        return point.x >= left && point.x < right && point.y >= top && point.y < bottom;
    }

    /// The smallest that holds both; what is empty counts for nothing.
    [[nodiscard]] constexpr CRect united(const CRect& other) const {
        if (empty() || other.empty())
            return empty() ? other : *this;
        return {std::min(left, other.left), std::min(top, other.top), std::max(right, other.right),
                std::max(bottom, other.bottom)};
    }

    /// Empty when the two do not meet.
    [[nodiscard]] constexpr CRect intersection(const CRect& other) const {
        return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
                std::min(bottom, other.bottom)};
    }
};
