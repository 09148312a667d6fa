#pragma once
/// What the panel must look like: its bitmaps, read from the artwork and laid over each other.

#include "platform/editor_window.h"
#include "vstgui/cdrawcontext.h"

#include <array>
#include <string>

/// A place on each control: of the parameters, by index, and of the actions.
constexpr CPoint control_places[]{{212, 176}, {268, 176}, {325, 176}, {382, 176}, {99, 176},
                                  {155, 176}, {367, 299}, {116, 299}, {242, 299}};
constexpr CPoint learn_place{323, 29}, lamp_place{368, 29}, panic_place{415, 29};

struct panel_state {
    std::array<float, 9> values{}; ///< of the parameters on the panel, by index
    bool learn = false, lamp = false, panic = false;
};

[[nodiscard]] CDrawContext panel_picture(const panel_state& state);

/// Returns the picture in a fraction of its size, each pixel the mean of those that it had.
[[nodiscard]] CDrawContext reduced(const CDrawContext& shown, int divisor);

/// Returns "" for pictures whose channels differ by no more than `tolerance`, else where they do.
[[nodiscard]] std::string first_difference(const CDrawContext& shown, const CDrawContext& expected,
                                           int tolerance = 0);

/// Takes pictures of the window for as long as clients may still be heard by the display. Returns
/// "" once one shows what is expected, `scale` times as large, else where the last one differs.
[[nodiscard]] std::string shown_difference(const editor_window& window,
                                           const CDrawContext& expected, int tolerance = 0,
                                           int scale = 1);
