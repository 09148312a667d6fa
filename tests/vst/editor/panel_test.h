#pragma once
/// The panel on a system without a display, and the hands of its user.

#include "tests/vst/editor/panel_host.h"
#include "vstgui/cbutton.h"
#include "vstgui/window_headless.h"

#include <gtest/gtest.h>

constexpr int volume = 6, flute = 0; ///< a knob and a switch

struct PanelTest : testing::Test {
    explicit PanelTest(VstInt32 nbPrograms = 0) : host(nbPrograms) {
        EXPECT_TRUE(host.open(&window));
        host.idle();
        window.puts.clear();
    }

    void press(CPoint where, int buttons = kLButton) const {
        window.listener->onMouseDown(where, buttons);
    }
    void move(CPoint where, int keys = 0) const { window.listener->onMouseMoved(where, keys); }
    void release(CPoint where, int button = kLButton) const {
        window.listener->onMouseUp(where, button);
    }
    void click(CPoint where) const {
        press(where);
        release(where);
    }

    /// Returns "" when the panel shows the parameters as they are.
    [[nodiscard]] std::string differs() const {
        return first_difference(window.screen, host.picture());
    }

    headless_parent window{}; ///< outlives the panel
    panel_host host;
};
