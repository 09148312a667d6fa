#include "platform/display.h"
#include "tests/vst/editor/panel_host.h"

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

struct PanelXcb : testing::Test {
    void moveTo(CPoint onPanel) {
        window.move({onPanel.x, onPanel.y});
        host.idle();
    }
    void take(VstInt32 knob) {
        moveTo(control_places[knob]);
        window.press();
        host.idle();
    }

    display server{display::choice::unseen};
    editor_window window{480, 400, {40, 30}};
    panel_host host{};
};

TEST_F(PanelXcb, AHostsWindowMayBeTransparent) {
    const editor_window transparent{480, 400, {}, true};
    EXPECT_TRUE(host.open(transparent.handle()));
}

TEST_F(PanelXcb, HidingItEndsTheDrag) {
    ASSERT_TRUE(host.open(window.handle()));
    for (const bool whole : {true, false})
        for (const bool beyond : {false, true}) { // with a knob each: no double click
            const VstInt32 index = beyond ? 7 : 6;
            const char* const end = beyond ? "e7" : "e6";
            take(index);
            moveTo(beyond ? CPoint{759, 301} : CPoint{460, 320});
            EXPECT_FALSE(host.told().ends_with(end));
            whole ? window.show(false) : window.show_content(false);
            host.idle();
            EXPECT_EQ(host.told(), end)
                << (whole ? "with the host's window" : "alone") << ", pointer beyond: " << beyond;
            window.release();
            whole ? window.show(true) : window.show_content(true);
        }
}

TEST_F(PanelXcb, AServerThatGoesAwayEndsThePanelAndNothingElse) {
    ASSERT_TRUE(host.open(window.handle()));
    take(6);
    server.stop(SIGKILL);
    for (int i = 0; i < 3; ++i) {
        host.set(6, 0.1f * static_cast<float>(i));
        host.idle();
    }
    EXPECT_EQ(host.told(), "b6 e6");
    host.close();
    EXPECT_FALSE(host.open(window.handle()));
    host.idle();
    host.close();
}

TEST_F(PanelXcb, ClosingAfterTheServerHasGoneIsHarmless) {
    ASSERT_TRUE(host.open(window.handle()));
    host.idle();
    server.stop();
    host.close();
}

/// What was put meanwhile shows afterwards. A display that holds up an idle turn ends the test.
TEST_F(PanelXcb, AServerThatStopsAnsweringHoldsUpNothing) {
    ASSERT_TRUE(host.open(window.handle()));
    take(6);
    window.show(false); // which the panel asks for, and hears of when there is an answer
    alarm(10);
    server.send_signal(SIGSTOP);
    for (int i = 0; i < 2000; ++i) {
        host.set(7 + i % 2, 0.5f * static_cast<float>(i % 3));
        host.set(i % 6, static_cast<float>(i / 6 % 2));
        host.idle();
    }
    server.send_signal(SIGCONT);
    alarm(0);
    window.show(true);
    std::string difference = "unseen";
    for (int i = 0; i < 100 && !difference.empty(); ++i) {
        host.idle();
        difference = shown_difference(window, host.picture());
    }
    EXPECT_EQ(difference, "");
    EXPECT_EQ(host.told(), "b6 e6");
}

TEST_F(PanelXcb, WithoutADisplayNothingOpens) {
    unsetenv("DISPLAY");
    EXPECT_FALSE(host.open(window.handle()));
    setenv("DISPLAY", ":no such display", 1);
    EXPECT_FALSE(host.open(window.handle()));
}

TEST(PanelXcbDepth, ScreensOfOtherDepthsShowItToo) {
    struct row {
        int depth, tolerance;
    };
    for (const row r : {row{16, 8}, {30, 1}}) {
        const display server(display::choice::unseen, r.depth);
        const editor_window window(480, 400);
        panel_host host;
        ASSERT_TRUE(host.open(window.handle()));
        host.idle();
        EXPECT_EQ(shown_difference(window, host.picture(), r.tolerance), "") << "depth " << r.depth;
    }
}

} // namespace
