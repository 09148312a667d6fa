#pragma once
/// A host's window for a panel, as the rows see it: on a display of the suite's own.

#include "platform/editor_window.h"
#include "vstgui/cdrawcontext.h"

#include <string>

class panel_window : public editor_window {
public:
    /// Throws a std::runtime_error where no window can be shown.
    explicit panel_window(CPoint corner_on_screen = {40, 30});

    /// Returns "" when the screen shows that in it, else where it differs.
    [[nodiscard]] std::string difference(const CDrawContext& expected) const;

    void move(CPoint on_panel) { editor_window::move({on_panel.x, on_panel.y}); }
};
