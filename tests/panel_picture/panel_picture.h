#pragma once
/// What the panel must look like: its bitmaps, read from the artwork and laid over each other.

#include "vstgui/cdrawcontext.h"

#include <array>
#include <string>

struct panel_state {
    std::array<float, 9> values; ///< of the parameters on the panel, by index
    bool learn = false, lamp = false, panic = false;
};

[[nodiscard]] CDrawContext panel_picture(const panel_state& state);

/// Returns "" for pictures whose channels differ by no more than `tolerance`, else where they do.
[[nodiscard]] std::string first_difference(const CDrawContext& shown, const CDrawContext& expected,
                                           int tolerance = 0);
