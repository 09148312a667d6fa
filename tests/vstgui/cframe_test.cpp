#include "tests/vst/editor/panel_test.h"
#include "vst/aeffeditor.h"

namespace {

using Frame = PanelTest;

TEST_F(Frame, IdleShowsWhatChangedAndNothingElse) {
    host.idle();
    EXPECT_EQ(window.puts.size(), 0u);
    host.set(volume, 0.9f);
    host.set(7, host.get(7));
    host.idle();
    ASSERT_EQ(window.puts.size(), 1u);
    const CRect put = window.puts[0];
    EXPECT_EQ((std::array{put.left, put.top, put.right, put.bottom}),
              (std::array{341, 274, 393, 325}));
    window.screen.row(300)[350] ^= 1;
    window.listener->onExpose({345, 295, 355, 305});
    EXPECT_EQ(differs(), "") << "what was uncovered";
}

TEST_F(Frame, EveryBeginHasItsEnd) {
    const CPoint knob = control_places[volume];
    press(knob);
    window.listener->onMouseLost();
    move({knob.x, 20});
    EXPECT_EQ(host.told(), "b6 e6") << "a lost mouse turns nothing";
    press(knob);       // whose release never comes
    press({240, 176}); // of two switches there, the later one
    EXPECT_EQ(host.told(), "b6 e6 b1 i s1 e1");
    press(knob);
    host.close();
    EXPECT_EQ(host.told(), "b6 e6");
    EXPECT_EQ(window.listener, nullptr) << "its window stays";
}

TEST_F(Frame, OnlyTheLeftButtonPlays) {
    for (const CPoint place : {control_places[volume], control_places[flute], panic_place})
        for (const int button : {+kMButton, +kRButton}) {
            press(place, button);
            move({0, 0});
            release({0, 0}, button);
        }
    EXPECT_EQ(host.told(), "");
}

TEST_F(Frame, TheWheelIsForTheKnobUnderThePointerUnlessOneIsHeld) {
    AEffEditor& editor = *host.plugin->getEditor();
    move(learn_place);
    EXPECT_FALSE(editor.onWheel(1));
    move(control_places[volume]);
    EXPECT_TRUE(editor.onWheel(2));
    EXPECT_EQ(host.told(), "b6 s6 e6");
    EXPECT_NEAR(host.get(volume), 0.52f, 1e-6f);
    press(control_places[volume]);
    EXPECT_TRUE(editor.onWheel(1)) << "a wheel in a drag reaches the host";
    EXPECT_EQ(host.told(), "b6");
}

} // namespace
