#include "tests/vstgui/panel_fixture.h"

namespace {

using Frame = PanelTest;

bool operator==(const CRect& a, const CRect& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

TEST_F(Frame, IdleShowsWhatChangedAndNothingElse) {
    editor.idle();
    ASSERT_EQ(host.puts.size(), 1u);
    EXPECT_TRUE(host.puts[0] == (CRect{0, 0, 480, 400}));
    editor.idle();
    EXPECT_EQ(host.puts.size(), 1u);
    editor.controls[display_tag]->setValue(1);
    editor.controls[knob_tag]->setValue(0);
    editor.idle();
    ASSERT_EQ(host.puts.size(), 2u);
    EXPECT_TRUE(host.puts[1] == editor.controls[display_tag]->getViewSize());
}

TEST_F(Frame, LaterViewsLieOverEarlierOnes) {
    const CReference<CBitmap> over = CReference<CBitmap>::make(156);
    CDrawContext alone(480, 400);
    over->draw(alone, {256, 100, 313, 228});
    editor.controls[left_tag]->setValue(1); // the earlier one is redrawn alone
    editor.idle();
    for (int y = 100; y < 228; ++y)
        ASSERT_EQ(host.screen.row(y)[256], alone.row(y)[256]) << "row " << y;
    press({256, 110});
    EXPECT_EQ(editor.controls[right_tag]->getValue(), 1);
}

TEST_F(Frame, AnUncoveredAreaIsShownAgain) {
    editor.idle();
    const auto before = host.screen.row(120)[110];
    host.screen.row(120)[110] = ~before;
    host.listener->onExpose({105, 115, 120, 125});
    EXPECT_EQ(host.screen.row(120)[110], before);
}

TEST_F(Frame, AWindowThatCannotBeShownOpensNothing) {
    editor.close();
    host.refuses = true;
    EXPECT_FALSE(editor.open(&host));
    EXPECT_FALSE(editor.isOpen());
    editor.idle();
    editor.close();
}

TEST_F(Frame, EveryBeginHasItsEnd) {
    press({126, 125});
    host.listener->onMouseLost();
    EXPECT_EQ(told(), "begin(0) end(0)");
    move({126, 25});
    EXPECT_EQ(told(), "") << "a lost mouse turns nothing";
    press({126, 125});
    press({360, 110}); // whose release never came
    EXPECT_EQ(told(), "begin(0) end(0) begin(3) change(3, 1)");
    editor.close();
    EXPECT_EQ(told(), "change(3, 0) end(3)");
}

// The host may close the panel, and open it again, whenever it is told something.
TEST_F(Frame, AnIdleWithinIdleLeavesTheWindowAlone) {
    int nb_turns = 0;
    host.at_events = [&] {
        ++nb_turns;
        editor.idle();
    };
    editor.idle();
    EXPECT_EQ(nb_turns, 1);
}

} // namespace
