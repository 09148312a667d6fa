#pragma once
/// A system without a display, for tests: the host's "window" is a record of theirs, in which they
/// see what is shown and from which they move the mouse. [ui]

#include "vstgui/window.h"

#include <functional>
#include <vector>

/// Its address is the parent window; without one no window is shown.
struct headless_parent {
    bool refuses = false; ///< to show windows
    CDrawContext screen{1440, 1200};
    std::vector<CRect> puts{};                  ///< areas shown, in order
    PlatformWindowListener* listener = nullptr; ///< of the window in it; null without one
    std::function<void()> at_events{};          ///< what happens when the window handles events
};
