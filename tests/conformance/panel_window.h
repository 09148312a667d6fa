#pragma once
/// A host's window for a panel, as the rows see it: on a display of the suite's own.

#include "platform/editor_window.h"
#include "vstgui/cdrawcontext.h"

#include <string>

class panel_window : public editor_window {
public:
    /// For a panel that is so many times as large as plain. Throws a std::runtime_error where no
    /// window can be shown.
    explicit panel_window(int scale);

    /// Returns "" when the screen shows that in it, as large, else where it differs.
    [[nodiscard]] std::string difference(const CDrawContext& expected) const;

    /// To a place on the plain panel.
    void move(CPoint on_panel) { editor_window::move({scale_ * on_panel.x, scale_ * on_panel.y}); }

private:
    int scale_;
};
