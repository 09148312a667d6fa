#include "platform/file_dialog/file_dialog_headless.h"
#include "tests/panel_picture/panel_picture.h"
#include "tests/temporary_folder.h"
#include "tests/vst/editor/panel_host.h"
#include "vst/editor/aeffguieditor.h"
#include "vst/editor/tags.h"
#include "vstgui/window_headless.h"

#include <gtest/gtest.h>
#include <utility>

namespace {

constexpr CPoint volume_knob = control_places[6], flute_switch = control_places[0];

struct EditorTest : testing::Test {
    explicit EditorTest(VstInt32 nbPrograms = 0) : host(nbPrograms) {}

    void press(CPoint where) { window.listener->onMouseDown(where, kLButton); }
    void release(CPoint where) { window.listener->onMouseUp(where, kLButton); }
    void click(CPoint where) {
        press(where);
        release(where);
    }

    [[nodiscard]] int learning() const { return host.p_control->p_control_update->midi_learning; }

    /// The panel's picture for the parameters as they are.
    [[nodiscard]] std::string differs() {
        panel_state state{};
        for (std::size_t i = 0; i < state.values.size(); ++i)
            state.values[i] = host.plugin->getParameter(static_cast<VstInt32>(i));
        return first_difference(window.screen, panel_picture(state));
    }

    panel_host host;
    headless_parent window{};
};

TEST_F(EditorTest, AClickCountsThoughTheHostIdlesInIt) {
    // What was set before waits for an idle turn.
    host.at[audioMasterIdle] = [this] { host.idle(); };
    ASSERT_TRUE(host.open(&window));
    host.plugin->setParameter(0, 1.0f);
    click(flute_switch);
    EXPECT_EQ(host.plugin->getParameter(0), 0.0f);
    click(flute_switch);
    EXPECT_EQ(host.plugin->getParameter(0), 1.0f);
}

TEST_F(EditorTest, EachOpeningTurnsKnobsInCirclesAgain) {
    const auto drag_up = [&] {
        host.plugin->setParameter(6, 0.5f);
        host.idle();
        press({377, 299});
        window.listener->onMouseMoved({377, 199}, 0);
        release({377, 199});
        return host.plugin->getParameter(6);
    };
    ASSERT_TRUE(host.open(&window));
    EXPECT_EQ(host.ask(effSetEditKnobMode, 0, 2), 1);
    EXPECT_EQ(drag_up(), 1.0f);
    host.close();
    ASSERT_TRUE(host.open(&window));
    EXPECT_LT(drag_up(), 0.5f);
}

TEST_F(EditorTest, LearnStillArmedAtReopeningIsDisarmedByTheFirstClick) {
    ASSERT_TRUE(host.open(&window));
    click(learn_place);
    host.close();
    ASSERT_TRUE(host.open(&window));
    host.idle();
    EXPECT_EQ(differs(), "");
    click(learn_place);
    EXPECT_EQ(learning(), 0);
    host.idle();
    host.idle();
    EXPECT_EQ(differs(), "");
}

TEST_F(EditorTest, ThePanelGoesOnDuringTheSystemsDialogAndAsksOnce) {
    ASSERT_TRUE(host.open(&window));
    host.idle();
    host.plugin->setParameter(6, 1.0f);
    headless_user::requests.clear();
    host.at[audioMasterIdle] = [&] { host.plugin->setParameter(MENU_TAG, BANK_SAVE_TAG); };
    host.plugin->setParameter(MENU_TAG, BANK_LOAD_TAG);
    EXPECT_EQ(headless_user::requests.size(), 1u);
    EXPECT_EQ(differs(), "");
}

TEST(EditorClosing, TheHostMayCloseTheEffectInAnyTurnItGets) {
    using hand = void (*)(panel_host&, headless_parent&);
    const hand press_knob = [](panel_host&, headless_parent& window) {
        window.listener->onMouseDown(volume_knob, kLButton);
    };
    const hand turn_knob = [](panel_host&, headless_parent& window) {
        window.listener->onMouseWheel(volume_knob, 1, 0);
    };
    const hand press_twice = [](panel_host&, headless_parent& window) { // the release is lost
        for (const int keys : {0, static_cast<int>(kShift)})
            window.listener->onMouseDown(volume_knob, kLButton | keys);
    };
    const hand close_in_a_drag = [](panel_host& host, headless_parent& window) {
        window.listener->onMouseDown(volume_knob, kLButton);
        host.close();
    };
    const hand press_switch = [](panel_host&, headless_parent& window) {
        window.listener->onMouseDown(flute_switch, kLButton);
    };
    const hand ask_for_file = [](panel_host& host, headless_parent&) {
        host.plugin->setParameter(MENU_TAG, BANK_LOAD_TAG);
    };
    struct row {
        const char* when;
        VstInt32 turn;
        hand use;
    };
    for (const row& r : {row{"a knob is taken", audioMasterBeginEdit, press_knob},
                         {"a knob is turned", audioMasterAutomate, turn_knob},
                         {"a knob is let go", audioMasterEndEdit, turn_knob},
                         {"a lost knob is let go", audioMasterEndEdit, press_twice},
                         {"the panel is closed", audioMasterEndEdit, close_in_a_drag},
                         {"a switch is pressed", audioMasterBeginEdit, press_switch},
                         {"a switch shows itself", audioMasterIdle, press_switch},
                         {"a switch is set", audioMasterAutomate, press_switch},
                         {"the system asks for a file", audioMasterIdle, ask_for_file},
                         {"the host asks for a file", audioMasterOpenFileSelector, ask_for_file},
                         {"the host has asked", audioMasterCloseFileSelector, ask_for_file}})
        for (const char* where : {"outside of idle", "in idle", "while a file is asked for"}) {
            SCOPED_TRACE(std::string(r.when) + " " + where);
            panel_host host;
            headless_parent window;
            host.chosen = headless_user::chosen_path = "/nowhere/at all";
            host.has_file_selector =
                r.turn == audioMasterOpenFileSelector || r.turn == audioMasterCloseFileSelector;
            ASSERT_TRUE(host.open(&window));
            host.ask(effSetEditKnobMode, 0, kCircularMode); // turns it as it is taken
            host.at[r.turn] = [&] { host.end(); };
            if (where[0] != 'o')
                window.at_events = [&] { r.use(host, window); };
            if (where[0] == 'i')
                host.idle();
            else if (where[0] == 'o')
                r.use(host, window);
            else
                ask_for_file(host, window);
            EXPECT_EQ(host.plugin, nullptr);
            EXPECT_EQ(window.listener, nullptr) << "its window stays";
        }
}

TEST_F(EditorTest, APanelClosedWhileASwitchShowsItselfStillSetsIt) {
    ASSERT_TRUE(host.open(&window));
    host.at[audioMasterIdle] = [this] { host.close(); };
    press(flute_switch);
    EXPECT_EQ(host.plugin->getParameter(0), 0.0f);
    EXPECT_EQ(host.gestures.size(), 3u);
    EXPECT_EQ(window.listener, nullptr);
}

TEST_F(EditorTest, APanelClosedWhileALostKnobIsLetGoTakesNoOther) {
    ASSERT_TRUE(host.open(&window));
    press(volume_knob);
    host.at[audioMasterEndEdit] = [this] { host.close(); };
    press(volume_knob);
    EXPECT_EQ(host.gestures.size(), 2u);
}

TEST_F(EditorTest, TheEffectMayGoWithItsPanelOpenAndAKnobInHand) {
    ASSERT_TRUE(host.open(&window));
    press(volume_knob);
    host.end();
    EXPECT_EQ(window.listener, nullptr);
    EXPECT_EQ(host.gestures.back(), (panel_host::gesture{audioMasterEndEdit, 6, 0}));
}

struct EditorWithPrograms : EditorTest {
    EditorWithPrograms() : EditorTest(4) {
        host.has_file_selector = true;
        host.chosen = folder / "patch.fxp";
        EXPECT_TRUE(host.open(&window));
    }

    void act(MenuAction action) { host.plugin->setParameter(MENU_TAG, static_cast<float>(action)); }

    temporary_folder folder{};
};

TEST_F(EditorWithPrograms, TheValueIsTheProgramsNumber) {
    struct row {
        float value;
        VstInt32 program;
    };
    for (const row r : {row{3.9f, 3}, {4, 3}, {1e30f, 3}, {1, 1}, {0, 0}}) {
        host.plugin->setParameter(PROGRAM_TAG, r.value);
        EXPECT_EQ(host.plugin->getProgram(), r.program) << r.value;
    }
}

TEST_F(EditorWithPrograms, StoredSavedAndLoadedProgramsShowOnThePanel) {
    host.plugin->setParameter(6, 0.25f);
    act(PATCH_STORE_CURRENT);
    act(PATCH_SAVE_TAG);
    host.plugin->setParameter(PROGRAM_TAG, 2);
    host.idle();
    EXPECT_EQ(host.plugin->getParameter(6), 0.5f);
    act(PATCH_LOAD_TAG);
    EXPECT_EQ(host.plugin->getParameter(6), 0.25f);
    host.idle();
    EXPECT_EQ(differs(), "");
    act(BANK_SAVE_TAG);
    act(BANK_LOAD_TAG);
    EXPECT_EQ(host.plugin->getParameter(6), 0.25f);
}

} // namespace
