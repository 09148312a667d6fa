#include "tests/vstgui/panel_fixture.h"

#include <vector>

namespace {

using Controls = PanelTest;

constexpr CPoint knob_top{126, 25}, knob_right{226, 125}, knob_bottom{126, 225}, knob_left{25, 125};

TEST_F(Controls, ADragTurnsTheKnobAsItsModeSays) {
    struct row {
        const char* name;
        VstInt32 mode;
        float from;
        std::vector<CPoint> path;
        int keys;
        float to;
    };
    const row rows[] = {
        {"turned with the mouse", kRelativeCircularMode, 0.25f, {knob_top, knob_right}, 0, 0.55f},
        {"turned back", kRelativeCircularMode, 0.5f, {knob_top, knob_left}, 0, 0.2f},
        {"over 6 o'clock",
         kRelativeCircularMode,
         0.1f,
         {knob_right, knob_bottom, knob_left},
         0,
         0.7f},
        {"beyond its end and back",
         kRelativeCircularMode,
         0.9f,
         {knob_top, knob_right, knob_top},
         0,
         0.7f},
        {"moved to its axis", kRelativeCircularMode, 0.5f, {knob_top, {126, 125}}, 0, 0.5f},
        {"pressed only", kRelativeCircularMode, 0.5f, {knob_left}, 0, 0.5f},
        {"pointing to the press", kCircularMode, 0.1f, {knob_right}, 0, 0.8f},
        {"pointing to the mouse", kCircularMode, 0.1f, {knob_top, knob_left}, 0, 0.2f},
        {"held at its end", kCircularMode, 0.9f, {knob_right, {130, 225}, {120, 225}}, 0, 1.0f},
        {"moved up", kLinearMode, 0.25f, {knob_right, {226, 75}}, 0, 0.5f},
        {"moved down finely", kLinearMode, 0.25f, {knob_right, {226, 165}}, kShift, 0.2f},
    };
    for (const row& r : rows) {
        // Only a press on the knob takes it, so each path starts there, in line with its axis.
        CControl& knob = *editor.controls[knob_tag];
        knob.setValue(r.from);
        editor.setKnobMode(r.mode);
        const CPoint first = r.path.front();
        press({126 + (first.x - 126) / 10, 125 + (first.y - 125) / 10});
        for (const CPoint point : r.path)
            move(point, r.keys);
        release(r.path.back());
        EXPECT_NEAR(knob.getValue(), r.to, 0.012f) << r.name;
        const std::string calls = told();
        EXPECT_TRUE(calls.starts_with("begin(0)") && calls.ends_with("end(0)")) << calls;
        for (auto at = calls.find("change("); at != std::string::npos;
             at = calls.find("change(", at + 1))
            EXPECT_EQ(calls.substr(calls.find(')', at), 8), ") pump()") << calls;
    }
}

TEST_F(Controls, AMoveThatComesDuringAnotherCountsOnce) {
    editor.setKnobMode(kLinearMode);
    press({126, 125});
    editor.at_call = [this] {
        editor.at_call = {};
        move({126, 85});
    };
    move({126, 105});
    move({126, 85});
    EXPECT_NEAR(editor.controls[knob_tag]->getValue(), 0.2f, 1e-6f);
}

TEST_F(Controls, AWheelAwayFromAKnobTellsNothing) {
    for (const CPoint place : {CPoint{10, 10}, {210, 110}, {360, 110}, {410, 110}})
        host.listener->onMouseWheel(place, 1, 0);
    EXPECT_EQ(told(), "");
    move({126, 125});
    EXPECT_TRUE(editor.onWheel(1)); // where the mouse is
    move({10, 10});
    EXPECT_FALSE(editor.onWheel(1));
    press({126, 125});
    told();
    EXPECT_TRUE(editor.onWheel(1)) << "a wheel in a drag reaches the host";
    EXPECT_EQ(told(), "");
}

TEST_F(Controls, ASwitchShowsItselfBeforeItTells) {
    editor.idle();
    host.puts.clear();
    std::size_t nb_puts_at_change = 0;
    editor.at_call = [&] {
        if (editor.log.calls.ends_with("change(1, 1)"))
            nb_puts_at_change = host.puts.size();
    };
    press({210, 110});
    release({210, 110});
    EXPECT_EQ(told(), "begin(1) pump() change(1, 1) end(1)");
    EXPECT_EQ(nb_puts_at_change, 1u);
    press({210, 110});
    EXPECT_EQ(told(), "begin(1) pump() change(1, 0) end(1)");
}

TEST_F(Controls, ASwitchIsOnFromTheMiddleUp) {
    struct row {
        float from, to;
    };
    for (const row r : {row{0.49f, 1}, {0.5f, 0}}) {
        editor.controls[left_tag]->setValue(r.from);
        press({210, 110});
        EXPECT_EQ(editor.controls[left_tag]->getValue(), r.to) << r.from;
    }
}

TEST_F(Controls, OnlyTheLeftButtonPlays) {
    for (const CPoint place : {CPoint{126, 125}, {210, 110}, {360, 110}, {410, 110}})
        for (const int button : {+kMButton, +kRButton}) {
            host.listener->onMouseDown(place, button);
            host.listener->onMouseMoved({0, 0}, 0);
            host.listener->onMouseUp({0, 0}, button);
        }
    press({410, 110}); // a display
    release({410, 110});
    EXPECT_EQ(told(), "");
}

TEST_F(Controls, AListenerMayTakeAClickWithAModifier) {
    editor.takes_modifiers = true;
    press({210, 110}, kAlt);
    EXPECT_EQ(told(), "modifier(1, 33)");
    press({210, 110});
    EXPECT_EQ(told(), "begin(1) pump() change(1, 1) end(1)");
}

} // namespace
