#include "tests/temporary_folder.h"
#include "tests/vst/editor/panel_host.h"
#include "tests/vst/editor/panel_picture.h"
#include "vst/editor/tags.h"
#include "vstgui/aeffguieditor.h"
#include "vstgui/platform_headless.h"

#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <utility>

namespace {

constexpr CPoint volume_knob{367, 299}, contour_knob{116, 299}, flute_switch{212, 176},
    learn_switch{323, 29}, lamp{368, 29}, panic_button{415, 29};

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
    [[nodiscard]] std::string differs(bool learn = false, bool midi = false) {
        panel_state state{.values = {}, .learn = learn, .lamp = midi};
        for (std::size_t i = 0; i < state.values.size(); ++i)
            state.values[i] = host.plugin->getParameter(static_cast<VstInt32>(i));
        return first_difference(window.screen, panel_picture(state));
    }

    panel_host host;
    headless_parent window{};
};

TEST_F(EditorTest, AClickCountsThoughTheHostIdlesInIt) {
    constexpr CPoint flute{212, 176};
    host.at[audioMasterIdle] = [this] {
        host.idle();
    }; // what was set before waits for an idle turn
    ASSERT_TRUE(host.open(&window));
    host.plugin->setParameter(0, 1.0f);
    click(flute);
    EXPECT_EQ(host.plugin->getParameter(0), 0.0f);
    click(flute);
    EXPECT_EQ(host.plugin->getParameter(0), 1.0f);
}

TEST_F(EditorTest, TellsItsSizeBeforeItOpens) {
    EXPECT_NE(host.plugin->getAeffect()->flags & effFlagsHasEditor, 0);
    ERect* size = nullptr;
    EXPECT_EQ(host.ask(effEditGetRect, 0, 0, &size), 1);
    ASSERT_NE(size, nullptr);
    EXPECT_EQ(size->top, 0);
    EXPECT_EQ(size->left, 0);
    EXPECT_EQ(size->bottom, 400);
    EXPECT_EQ(size->right, 480);
}

TEST_F(EditorTest, OpensWithWhatTheParametersAre) {
    for (VstInt32 i = 0; i < 10; ++i)
        host.plugin->setParameter(i, 0.1f * static_cast<float>(i));
    ASSERT_TRUE(host.open(&window));
    host.idle();
    EXPECT_EQ(differs(), "");
    host.close();
    host.plugin->setParameter(6, 0.9f); // unseen
    ASSERT_TRUE(host.open(&window));
    host.idle();
    EXPECT_EQ(differs(), "");
}

TEST_F(EditorTest, ShowsMidiAutomationAndProgramsAtTheNextIdle) {
    ASSERT_TRUE(host.open(&window));
    host.idle();
    host.sendMidi(0xB0, 7, 13);
    host.plugin->setParameter(3, 0.0f);
    host.plugin->setParameter(9, 0.3f);  // not on the panel
    host.plugin->setParameter(8, 1.5f);  // shown as 1
    host.plugin->setParameter(7, -0.5f); // stored as 0
    host.plugin->setParameter(8, NAN);
    host.plugin->setParameter(1023, 1.0f);
    host.idle();
    EXPECT_EQ(host.plugin->getParameter(8), 1.5f);
    host.plugin->setParameter(8, 1.0f);
    EXPECT_EQ(differs(false, false), "");
}

TEST_F(EditorTest, TurningAKnobTellsTheHost) {
    ASSERT_TRUE(host.open(&window));
    press(volume_knob);
    window.listener->onMouseMoved({367, 200}, 0);
    window.listener->onMouseMoved({467, 299}, 0);
    release({467, 299});
    ASSERT_GE(host.gestures.size(), 3u);
    EXPECT_EQ(host.gestures.front(), (panel_host::gesture{audioMasterBeginEdit, 6, 0}));
    EXPECT_EQ(host.gestures.back(), (panel_host::gesture{audioMasterEndEdit, 6, 0}));
    const auto last = host.gestures[host.gestures.size() - 2];
    EXPECT_EQ(last, (panel_host::gesture{audioMasterAutomate, 6, host.plugin->getParameter(6)}));
    EXPECT_GT(last.value, 0.5f);
    host.idle();
    EXPECT_EQ(differs(), "");
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

TEST_F(EditorTest, DoubleClickBringsTheConfiguredDefaultBack) {
    host.plugin->setParameter(7, 0.9f);
    ASSERT_TRUE(host.open(&window));
    window.listener->onMouseDown(contour_knob, kLButton | kDoubleClick);
    EXPECT_EQ(host.plugin->getParameter(7), host.p_control->parameters[7]->default_value);
}

TEST_F(EditorTest, ActionsAreNoGesturesOfTheHosts) {
    ASSERT_TRUE(host.open(&window));
    click(learn_switch);
    click(lamp);
    click(panic_button);
    EXPECT_TRUE(host.gestures.empty());
}

TEST_F(EditorTest, LearnTwiceIsOffAgain) {
    ASSERT_TRUE(host.open(&window));
    click(learn_switch);
    host.idle();
    EXPECT_EQ(learning(), 1);
    host.idle();
    EXPECT_EQ(differs(true), "");
    click(learn_switch);
    host.idle();
    host.idle();
    EXPECT_EQ(learning(), 0);
    EXPECT_EQ(differs(), "");
}

TEST_F(EditorTest, AControllerIsLearnedByTheKnobTouchedLast) {
    ASSERT_TRUE(host.open(&window));
    click(learn_switch);
    window.listener->onMouseWheel(contour_knob, 1, 0);
    host.sendMidi(0xB4, 20, 64);
    EXPECT_EQ(host.p_control->parameters[7]->midi_cc, 20u);
    EXPECT_EQ(host.p_control->parameters[7]->midi_channel, 5u);
    host.idle();
    host.plugin->midiNumEvents = 0;
    host.idle();
    host.idle();
    EXPECT_EQ(differs(), "");
}

TEST_F(EditorTest, LearnStillArmedAtReopeningIsDisarmedByTheFirstClick) {
    ASSERT_TRUE(host.open(&window));
    click(learn_switch);
    host.close();
    ASSERT_TRUE(host.open(&window));
    host.idle();
    EXPECT_EQ(differs(), "");
    click(learn_switch);
    EXPECT_EQ(learning(), 0);
    host.idle();
    host.idle();
    EXPECT_EQ(differs(), "");
}

TEST_F(EditorTest, TheLampShowsMidiOneIdleLong) {
    ASSERT_TRUE(host.open(&window));
    host.sendMidi(0x90, 60, 100);
    host.idle(); // sees it
    host.idle(); // shows it, and sees none
    EXPECT_EQ(differs(false, true), "");
    host.idle();
    EXPECT_EQ(differs(), "");
}

TEST_F(EditorTest, PanicSilences) {
    host.plugin->setSampleRate(48000);
    host.plugin->setParameter(6, 1.0f);
    ASSERT_TRUE(host.open(&window));
    std::vector<float> left(4096), right(4096);
    float* outputs[] = {right.data(), left.data()};
    const auto loudest = [&] {
        host.plugin->processReplacing(nullptr, outputs, 4096);
        float peak = 0;
        for (const float sample : right)
            peak = std::max(peak, std::abs(sample));
        return peak;
    };
    host.sendMidi(0x90, 60, 100);
    loudest();
    const float before = loudest();
    click(panic_button);
    for (int i = 0; i < 20; ++i)
        loudest();
    EXPECT_LT(loudest(), before / 1000);
}

TEST_F(EditorTest, ActionsNeedAnOpenPanel) {
    host.plugin->setParameter(MIDI_LEARN_TAG, 1);
    host.plugin->setParameter(MENU_TAG, BANK_LOAD_TAG);
    EXPECT_EQ(learning(), 0);
    EXPECT_TRUE(host.requests.empty());
    host.idle();
    host.close();
}

TEST_F(EditorTest, MenuSelectsTheOutputMode) {
    host.plugin->setSampleRate(48000);
    host.plugin->setParameter(9, 1.0f);
    ASSERT_TRUE(host.open(&window));
    auto* instrument = static_cast<korvel*>(host.engine->p_instrument.get());
    struct row {
        float value;
        int mode;
    };
    instrument->sound_output_mode = 2;
    for (const row r :
         {row{1, 1}, {2, 2}, {0, 0}, {2.5f, 0}, {1e30f, 0}, {8, 0}, {1, 1}, {-1, 0}}) {
        host.plugin->setParameter(MENU_TAG, r.value);
        EXPECT_EQ(instrument->sound_output_mode, r.mode) << r.value;
    }
}

TEST_F(EditorTest, AsksTheHostForAFile) {
    host.has_file_selector = true;
    ASSERT_TRUE(host.open(&window));
    struct row {
        MenuAction action;
        VstInt32 command;
        const char *title, *name, *extension, *mime;
    };
    for (const row& r :
         {row{BANK_LOAD_TAG, kVstFileLoad, "Load bank ... ", "Bank", "fxb", "audio/x-fxb"},
          {BANK_SAVE_TAG, kVstFileSave, "Save bank ... ", "Bank", "fxb", "audio/x-fxb"},
          {PATCH_LOAD_TAG, kVstFileLoad, "Load patch ... ", "Patch", "fxp", "audio/x-fxp"},
          {PATCH_SAVE_TAG, kVstFileSave, "Save patch ... ", "Patch", "fxp", "audio/x-fxp"}}) {
        for (const char* path : {"", "/nowhere/at all"}) { // the bank is empty: nothing happens
            host.chosen = path;
            host.plugin->setParameter(MENU_TAG, static_cast<float>(r.action));
            ASSERT_FALSE(host.requests.empty()) << r.title;
            EXPECT_EQ(host.requests.back().command, r.command) << r.title;
            EXPECT_EQ(host.requests.back().nbFileTypes, 1) << r.title;
            EXPECT_STREQ(host.requests.back().title, r.title);
            EXPECT_STREQ(host.types.back().name, r.name);
            EXPECT_STREQ(host.types.back().unixType, r.extension);
            EXPECT_STREQ(host.types.back().mimeType2, r.mime);
            EXPECT_EQ(std::exchange(host.nb_closed_requests, 0), host.chosen.empty() ? 0 : 1);
        }
    }
    host.plugin->setParameter(MENU_TAG, PATCH_STORE_CURRENT);
}

TEST_F(EditorTest, ThePanelGoesOnDuringTheSystemsDialogAndAsksOnce) {
    ASSERT_TRUE(host.open(&window));
    host.idle();
    host.plugin->setParameter(6, 1.0f);
    host.at[audioMasterIdle] = [&] { host.plugin->setParameter(MENU_TAG, BANK_SAVE_TAG); };
    host.plugin->setParameter(MENU_TAG, BANK_LOAD_TAG);
    EXPECT_EQ(window.dialogs.size(), 1u);
    EXPECT_EQ(differs(), "");
}

TEST_F(EditorTest, EveryKeyIsTakenAndChangesNothing) {
    ASSERT_TRUE(host.open(&window));
    host.idle();
    EXPECT_EQ(host.ask(effEditKeyDown, 'q', 0, nullptr, 0), 1);
    EXPECT_EQ(host.ask(effEditKeyDown, 0, 40, nullptr, 1), 1);
    EXPECT_EQ(host.ask(effEditKeyUp, 'q', 0, nullptr, 0), 0);
    host.idle();
    EXPECT_EQ(differs(), "");
    EXPECT_TRUE(host.gestures.empty());
}

TEST_F(EditorTest, TwoPanelsDoNotMix) {
    panel_host other;
    headless_parent other_window;
    ASSERT_TRUE(host.open(&window));
    ASSERT_TRUE(other.open(&other_window));
    host.ask(effSetEditKnobMode, 0, 2);
    click(learn_switch);
    click(flute_switch);
    host.idle();
    other.idle();
    host.idle();
    EXPECT_EQ(differs(true), "");
    EXPECT_TRUE(other.gestures.empty());
    EXPECT_EQ(other.p_control->p_control_update->midi_learning, 0);
    EXPECT_EQ(other.plugin->getParameter(0), 1.0f);
}

TEST(EditorSound, IsTheSameWithAndWithoutAPanel) {
    setenv("TINDELWAX_SEED", "7", 1);
    panel_host with_panel, without;
    unsetenv("TINDELWAX_SEED");
    headless_parent window;
    std::vector<float> sound[2] = {std::vector<float>(256), std::vector<float>(256)};
    for (panel_host* host : {&with_panel, &without})
        host->plugin->setSampleRate(48000);
    for (int block = 0; block < 60; ++block) {
        if (block % 10 == 1) {
            ASSERT_TRUE(with_panel.open(&window));
        }
        if (block % 10 > 1) {
            window.listener->onMouseDown({367, 289}, kLButton);
            window.listener->onMouseMoved({367 + block, 289}, 0);
            with_panel.idle();
        }
        if (block % 10 == 9)
            with_panel.close();
        for (const auto& gesture : std::exchange(with_panel.gestures, {}))
            if (gesture.opcode == audioMasterAutomate)
                without.plugin->setParameter(gesture.index, gesture.value);
        for (panel_host* host : {&with_panel, &without}) {
            std::vector<float>& right = sound[host == &without];
            std::vector<float> left(256);
            float* outputs[] = {right.data(), left.data()};
            host->sendMidi(0x90, 50 + block % 40, 100);
            host->plugin->processReplacing(nullptr, outputs, 256);
        }
        ASSERT_EQ(sound[0], sound[1]) << "block " << block;
    }
    EXPECT_NE(sound[0], std::vector<float>(256));
}

TEST(EditorClosing, TheHostMayCloseTheEffectInAnyTurnItGets) {
    using hand = void (*)(panel_host&, headless_parent&);
    const hand press_knob = [](panel_host&, headless_parent& window) {
        window.listener->onMouseDown(volume_knob, kLButton);
    };
    const hand turn_knob = [](panel_host&, headless_parent& window) {
        window.listener->onMouseWheel(volume_knob, 1, 0);
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
            host.chosen = window.chosen_path = "/nowhere/at all";
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
