#include "tests/vst/editor/panel_test.h"
#include "vstgui/cframeowner.h"

#include <vector>

namespace {

using Knob = PanelTest;

constexpr CPoint top{0, -100}, right{100, 0}, bottom{0, 100}, left{-100, 0}; ///< from its axis

CPoint beside_axis(CPoint away) { return {367 + away.x, 299 + away.y}; }

TEST_F(Knob, ADragTurnsItAsItsModeSays) {
    struct row {
        const char* name;
        CKnobMode mode;
        float from, to;
        std::vector<CPoint> path;
        int keys = 0;
    };
    for (const row& r :
         {row{"with the mouse", kRelativeCircularMode, 0.25f, 0.55f, {top, right}},
          row{"over 6 o'clock", kRelativeCircularMode, 0.1f, 0.7f, {right, bottom, left}},
          row{"beyond its end and back", kRelativeCircularMode, 0.9f, 0.7f, {top, right, top}},
          row{"over its axis", kRelativeCircularMode, 0.5f, 0.5f, {top, {0, 0}}},
          row{"pressed only", kRelativeCircularMode, 0.5f, 0.5f, {left}},
          row{"pointing to the press", kCircularMode, 0.1f, 0.8f, {right}},
          row{"pointing to the mouse", kCircularMode, 0.1f, 0.2f, {top, left}},
          row{"finely with the mouse", kRelativeCircularMode, 0.5f, 0.575f, {top, right}, kShift},
          row{"finely from where it is", kCircularMode, 0.5f, 0.425f, {right, top}, kShift},
          row{"held at its end", kCircularMode, 0.9f, 1, {right, {4, 100}, {-6, 100}}},
          row{"up", kLinearMode, 0.25f, 0.5f, {right, {100, -50}}},
          row{"down finely", kLinearMode, 0.25f, 0.2f, {right, {100, 40}}, kShift}}) {
        host.set(volume, r.from);
        host.idle();
        EXPECT_EQ(host.ask(effSetEditKnobMode, r.mode), 1);
        const CPoint first = r.path.front(); // pressed on the knob, in line with it
        press(beside_axis({first.x / 10, first.y / 10}), kLButton | r.keys);
        for (const CPoint point : r.path)
            move(beside_axis(point), r.keys);
        release(beside_axis(r.path.back()));
        EXPECT_NEAR(host.get(volume), r.to, 0.012f) << r.name;
    }
    host.open(&window); // in circles again
    press(beside_axis({0, -10}));
    move(beside_axis(right));
    EXPECT_NEAR(host.get(volume), 0.5f, 0.012f);
}

TEST_F(Knob, EachMoveShowsAndCountsOnceThoughAnotherComesInIt) {
    host.ask(effSetEditKnobMode, kLinearMode);
    press(beside_axis(CPoint{}));
    host.at[audioMasterAutomate] = [this] {
        host.at = {};
        move(beside_axis({0, -40}));
        host.at[audioMasterIdle] = [this] { EXPECT_EQ(differs(), ""); };
    };
    move(beside_axis({0, -20}));
    move(beside_axis({0, -40}));
    EXPECT_EQ(host.told(), "b6 s6 s6 i i");
    EXPECT_NEAR(host.get(volume), 0.7f, 1e-6f);
}

} // namespace
