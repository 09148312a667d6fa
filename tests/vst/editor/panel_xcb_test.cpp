#include "tests/vst/editor/panel_host.h"
#include "tests/vst/editor/panel_picture.h"
#include "tests/vstgui/x_host.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <malloc.h>

namespace {

struct PanelXcb : testing::Test {
    void moveTo(CPoint onPanel) {
        screen.move({corner.x + onPanel.x, corner.y + onPanel.y});
        host.idle();
    }
    void button(int number, bool down) {
        screen.button(number, down);
        host.idle();
    }
    void click(CPoint onPanel, int number = 1) {
        moveTo(onPanel);
        button(number, true);
        button(number, false);
    }

    [[nodiscard]] std::string differs(void* shown_in, panel_host& shown, bool learn = false) {
        panel_state state{.values = {}, .learn = learn};
        for (std::size_t i = 0; i < state.values.size(); ++i)
            state.values[i] = shown.plugin->getParameter(static_cast<VstInt32>(i));
        return first_difference(screen.picture(shown_in), panel_picture(state));
    }

    /// The gestures since the last time in a letter each: "bse" begins, sets and ends one.
    std::string gestures(VstInt32 index) {
        std::string letters;
        for (const auto& gesture : std::exchange(host.gestures, {})) {
            EXPECT_EQ(gesture.index, index);
            letters += gesture.opcode == audioMasterAutomate    ? 's'
                       : gesture.opcode == audioMasterBeginEdit ? 'b'
                                                                : 'e';
            last_value = gesture.opcode == audioMasterAutomate ? gesture.value : last_value;
        }
        return letters;
    }

    CPoint corner{40, 30}; ///< of the host's window on the screen
    XServer server{};
    XHost screen{};
    void* window = screen.makeWindow(corner);
    panel_host host{};
    float last_value = -1; ///< that the host was told
};

constexpr CPoint knobs[] = {{367, 299}, {116, 299}, {242, 299}}; ///< from parameter 6 on
constexpr CPoint switches[] = {{212, 176}, {268, 176}, {325, 176},
                               {382, 176}, {99, 176},  {155, 176}}; ///< from parameter 0 on

TEST_F(PanelXcb, ShowsEveryParameterAtEveryValue) {
    ASSERT_TRUE(host.open(window));
    for (VstInt32 index = 0; index < 9; ++index)
        for (int step = 0; step <= 32; ++step) {
            host.plugin->setParameter(index, static_cast<float>(step) / 32);
            host.idle();
            ASSERT_EQ(differs(window, host), "") << "parameter " << index << ", " << step << "/32";
        }
}

TEST_F(PanelXcb, DragsGoOnBeyondTheWindow) {
    ASSERT_TRUE(host.open(window));
    for (VstInt32 index = 6; index < 9; ++index) {
        const CPoint knob = knobs[index - 6];
        host.plugin->setParameter(index, 0.5f);
        host.idle();
        moveTo({knob.x, knob.y - 15});
        button(1, true);
        screen.move({799, 330}); // outside of the host's window, about a quarter turn on
        screen.move({799, 331});
        host.idle();
        button(1, false);
        const std::string letters = gestures(index);
        EXPECT_TRUE(letters.starts_with("bs") && letters.ends_with("se")) << letters;
        EXPECT_EQ(std::ranges::count(letters, 'b'), 1);
        EXPECT_NEAR(last_value, 0.8f, 0.01f);
        EXPECT_EQ(last_value, host.plugin->getParameter(index));
        EXPECT_EQ(differs(window, host), "");
    }
}

TEST_F(PanelXcb, WheelAndDoubleClickReachEveryKnob) {
    constexpr std::uint8_t left_shift = 50, left_control = 37;
    ASSERT_TRUE(host.open(window));
    for (VstInt32 index = 6; index < 9; ++index) {
        host.plugin->setParameter(index, 0.25f);
        click(knobs[index - 6], 4);
        EXPECT_EQ(gestures(index), "bse");
        EXPECT_FLOAT_EQ(last_value, 0.26f);
        screen.key(left_shift, true);
        click(knobs[index - 6], 5);
        screen.key(left_shift, false);
        EXPECT_EQ(gestures(index), "bse");
        EXPECT_FLOAT_EQ(last_value, 0.2575f);
        click(knobs[index - 6]);
        click(knobs[index - 6]);
        EXPECT_EQ(gestures(index), "bebse");
        EXPECT_EQ(last_value, index == 7 ? 0.1f : 0.5f);
        host.plugin->setParameter(index, 0.25f);
        screen.key(left_control, true);
        click(knobs[index - 6]);
        screen.key(left_control, false);
        EXPECT_EQ(gestures(index), "bse");
        EXPECT_EQ(last_value, index == 7 ? 0.1f : 0.5f);
    }
}

TEST_F(PanelXcb, SwitchesAndActionsAreClicked) {
    ASSERT_TRUE(host.open(window));
    for (VstInt32 index = 0; index < 6; ++index) {
        const float before = host.plugin->getParameter(index);
        click(switches[index]);
        EXPECT_EQ(gestures(index), "bse");
        EXPECT_EQ(last_value, 1 - before);
        EXPECT_EQ(differs(window, host), "");
    }
    click({323, 29});
    EXPECT_EQ(host.p_control->p_control_update->midi_learning, 1);
    click({368, 29}); // the lamp
    click({415, 29}); // panic
    host.idle();
    EXPECT_TRUE(host.gestures.empty());
    EXPECT_EQ(differs(window, host, true), "");
}

TEST_F(PanelXcb, LeavesTheKeyboardToTheHost) {
    constexpr std::uint8_t letter_a = 38;
    screen.takeKeys(window);
    ASSERT_TRUE(host.open(window));
    click(switches[0]);
    click(knobs[0]);
    screen.key(letter_a, true);
    EXPECT_EQ(screen.nextKey(), letter_a);
}

std::size_t nb_open_files() {
    using files = std::filesystem::directory_iterator;
    return static_cast<std::size_t>(std::distance(files("/proc/self/fd"), files()));
}

TEST_F(PanelXcb, OpeningAThousandTimesLeavesNothing) {
    const auto open_and_close = [&](int nb_times) {
        for (int i = 0; i < nb_times; ++i) {
            ASSERT_TRUE(host.open(window));
            host.idle();
            host.close();
        }
    };
    open_and_close(20);
    const std::size_t files = nb_open_files(), memory = mallinfo2().uordblks;
    open_and_close(1000);
    EXPECT_EQ(nb_open_files(), files);
    EXPECT_LE(mallinfo2().uordblks, memory + 4096);
    EXPECT_EQ(screen.nbChildren(window), 0u);
    host.close(); // once more
}

TEST_F(PanelXcb, TwoPanelsAtOnceDoNotMix) {
    panel_host other;
    void* other_window = screen.makeWindow({310, 190}); // covers a part of the first
    ASSERT_TRUE(host.open(window));
    ASSERT_TRUE(other.open(other_window));
    host.plugin->setParameter(2, 0.0f);
    other.plugin->setParameter(8, 1.0f);
    click(switches[4]);
    other.idle();
    EXPECT_EQ(differs(other_window, other), "");
    EXPECT_TRUE(other.gestures.empty());
    other.close();
    screen.destroyWindow(other_window); // uncovers it
    host.idle();
    EXPECT_EQ(differs(window, host), "");
}

TEST_F(PanelXcb, AParentThatGoesFirstEndsTheDrag) {
    ASSERT_TRUE(host.open(window));
    moveTo(knobs[0]);
    button(1, true);
    screen.destroyWindow(window);
    host.idle();
    EXPECT_EQ(gestures(6), "be");
    host.plugin->setParameter(6, 0.7f);
    host.idle();
    host.close();
    host.close();
    void* next = screen.makeWindow(corner);
    ASSERT_TRUE(host.open(next));
    host.idle();
    EXPECT_EQ(differs(next, host), "");
}

TEST_F(PanelXcb, AServerThatGoesAwayEndsThePanelAndNothingElse) {
    ASSERT_TRUE(host.open(window));
    moveTo(knobs[0]);
    button(1, true);
    server.stop(SIGKILL);
    for (int i = 0; i < 3; ++i) {
        host.plugin->setParameter(6, 0.1f * static_cast<float>(i));
        host.idle();
    }
    EXPECT_EQ(gestures(6), "be");
    host.close();
    EXPECT_FALSE(host.open(window));
    host.idle();
    host.close();
}

TEST_F(PanelXcb, ClosingAfterTheServerHasGoneIsHarmless) {
    ASSERT_TRUE(host.open(window));
    host.idle();
    server.stop();
    host.close(); // writes to the server before it has seen that there is none
}

TEST_F(PanelXcb, WhatIsNoWindowOpensNothing) {
    EXPECT_FALSE(host.open(nullptr));
    EXPECT_FALSE(host.open(reinterpret_cast<void*>(0x7654321)));
    unsetenv("DISPLAY");
    EXPECT_FALSE(host.open(window));
    setenv("DISPLAY", ":no such display", 1);
    EXPECT_FALSE(host.open(window));
}

TEST(PanelXcbDepth, ScreensOfOtherDepthsShowItToo) {
    struct row {
        int depth, tolerance;
    };
    for (const row r : {row{16, 8}, {30, 1}}) {
        const XServer server(r.depth);
        XHost screen;
        void* window = screen.makeWindow({0, 0});
        panel_host host;
        ASSERT_TRUE(host.open(window));
        host.idle();
        const panel_state defaults{.values = {1, 1, 1, 1, 0, 1, 0.5f, 0.1f, 0.5f}};
        EXPECT_EQ(first_difference(screen.picture(window), panel_picture(defaults), r.tolerance),
                  "")
            << "depth " << r.depth;
    }
}

} // namespace
