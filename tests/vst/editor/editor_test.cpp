#include "platform/file_dialog/file_dialog_headless.h"
#include "tests/temporary_folder.h"
#include "tests/vst/editor/panel_test.h"
#include "vst/editor/tags.h"
#include "vstgui/cframeowner.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

using EditorTest = PanelTest;

TEST_F(EditorTest, AClickCountsThoughTheHostIdlesInIt) {
    host.at[audioMasterIdle] = [this] { host.idle(); };
    host.set(flute, 1); // waits for an idle turn
    click(control_places[flute]);
    EXPECT_EQ(host.get(flute), 0);
    int nb_turns = 0;
    window.at_events = [&] {
        ++nb_turns;
        host.idle();
        click(control_places[flute]);
    };
    host.idle();
    EXPECT_EQ(nb_turns, 1);
    EXPECT_EQ(host.get(flute), 1);
}

TEST_F(EditorTest, OpensWithWhatTheParametersAre) {
    host.set(8, 1.5f);
    host.idle();
    host.set(8, 1); // which is what more than 1 looks like
    EXPECT_EQ(differs(), "");
    host.close();
    host.set(volume, 0.9f);
    EXPECT_TRUE(host.open(&window));
    host.idle();
    EXPECT_EQ(differs(), "");
}

/// How many times as bright the second picture is as the first, where they differ.
double brightness_gain(const CDrawContext& off, const CDrawContext& on) {
    double sums[2]{};
    for (int y = 0; y < off.bounds().height(); ++y)
        for (std::size_t x = 0; x < off.row(y).size(); ++x)
            if (off.row(y)[x] != on.row(y)[x])
                for (const auto* shown : {&off, &on}) {
                    const std::uint32_t pixel = shown->row(y)[x];
                    sums[shown == &on] += 0.299 * (pixel >> 16) + 0.587 * (pixel >> 8 & 0xFF)
                                          + 0.114 * (pixel & 0xFF);
                }
    return sums[1] / sums[0];
}

/// From two metres, in a picture of half the size, and by eyes that tell no colours.
TEST(EditorScale, WhatIsOnIsBrighterInEverySize) {
    for (const auto& [scale, divisor] : {std::pair{1, 2}, {1, 1}, {2, 1}, {3, 1}}) {
        headless_parent window;
        const panel_host host;
        host.tell_scale(static_cast<float>(scale));
        ASSERT_TRUE(host.open(&window));
        for (int index = 0; index < volume; ++index) // the tabs
            host.set(index, 0);
        const auto shown = [&] {
            host.idle();
            return reduced(window.screen, divisor);
        };
        CDrawContext before = shown();
        for (int index = 0; index <= volume; ++index) {
            const CPoint place = index < volume ? control_places[index] : learn_place;
            window.listener->onMouseDown({scale * place.x, scale * place.y}, kLButton);
            window.listener->onMouseUp({}, kLButton);
            CDrawContext after = shown();
            EXPECT_GE(brightness_gain(before, after), 1.5)
                << "control " << index << ", " << scale << "/" << divisor << " of its size";
            before = std::move(after);
        }
    }
}

TEST(EditorScale, IsTheHostsOrTheEnvironmentsOrOne) {
    struct row {
        const char* environment;
        float told; ///< by the host, if not 0
        int scale;
        bool is_taken = true;
    };
    for (const row& r : {row{"", 0, 1},
                         {"2", 0, 2},
                         {"9", 0, 3},
                         {"large", 0, 1},
                         {"2", 1, 1},
                         {"", 1.5f, 2},
                         {"", INFINITY, 3},
                         {"3", NAN, 3, false},
                         {"2", -1, 2, false}}) {
        SCOPED_TRACE(std::string(r.environment) + ", told " + std::to_string(r.told));
        setenv("TINDELWAX_SCALE", r.environment, 1);
        headless_parent window;
        const panel_host host;
        EXPECT_TRUE(r.told == 0 || host.tell_scale(r.told) == r.is_taken);
        ERect* size = nullptr;
        host.ask(effEditGetRect, 0, &size);
        EXPECT_EQ(size->right, 480 * r.scale);
        EXPECT_EQ(size->bottom, 400 * r.scale);
        EXPECT_TRUE(host.open(&window));
        EXPECT_EQ(host.tell_scale(static_cast<float>(r.scale % 3 + 1)), 0) << "while it is open";
        host.ask(effSetEditKnobMode, kLinearMode);
        host.set(volume, 0.2f);
        host.idle();
        EXPECT_EQ(window.puts.front().right, 480 * r.scale);

        const auto at = [&r](CPoint place, int higher = 0) {
            return CPoint{r.scale * place.x, r.scale * (place.y - higher)};
        };
        window.listener->onMouseDown(at(control_places[volume]), kLButton);
        window.listener->onMouseMoved(at(control_places[volume], 60), 0);
        window.listener->onMouseUp(at(control_places[volume], 60), kLButton);
        EXPECT_NEAR(host.get(volume), 0.5f, 1e-6f);
        window.listener->onMouseDown(at(control_places[flute]), kLButton);
        EXPECT_EQ(host.get(flute), 0);
        EXPECT_EQ(window.puts.back().left, 184 * r.scale);
        EXPECT_EQ(window.puts.back().height(), 128 * r.scale);
        EXPECT_EQ(first_difference(reduced(window.screen, r.scale), host.picture(), r.scale > 1),
                  "");
    }
    unsetenv("TINDELWAX_SCALE");
}

TEST_F(EditorTest, LearnStillArmedAtReopeningIsDisarmedByTheFirstClick) {
    const auto& learning = host.p_control->p_control_update->midi_learning;
    click(learn_place);
    host.open(&window);
    host.idle();
    EXPECT_EQ(differs(), "");
    EXPECT_EQ(learning, 1);
    click(learn_place);
    EXPECT_EQ(learning, 0);
    host.idle(); // sees it
    host.idle(); // shows it
    EXPECT_EQ(differs(), "");
    host.close();
    host.set(MIDI_LEARN_TAG, 1);
    EXPECT_EQ(learning, 0) << "an action without its panel";
}

TEST_F(EditorTest, ThePanelGoesOnDuringTheSystemsDialogAndAsksOnce) {
    headless_user::requests.clear();
    host.set(volume, 1);
    host.at[audioMasterIdle] = [&] { host.set(MENU_TAG, BANK_SAVE_TAG); };
    host.set(MENU_TAG, BANK_LOAD_TAG);
    ASSERT_EQ(headless_user::requests.size(), 1u);
    const file_request& request = headless_user::requests[0];
    EXPECT_EQ(request.title + request.folder + request.kinds.at(0).name
                  + request.kinds.at(0).extension,
              "Load bank ... ./Bankfxb");
    EXPECT_EQ(differs(), "");
}

/// What a user does to the panel; the host may take any turn that it gets in it for its own ends.
using hand = void (*)(panel_host&, headless_parent&);

void press_at(const headless_parent& window, CPoint where, int keys = 0) {
    window.listener->onMouseDown(where, kLButton | keys);
}
void turn_knob(panel_host&, headless_parent& window) {
    window.listener->onMouseWheel(control_places[volume], 1, 0);
}
void drag_knob(panel_host&, headless_parent& window) {
    press_at(window, control_places[volume]);
    if (window.listener)
        window.listener->onMouseMoved({750, 320}, 0);
}
void press_knob_twice(panel_host&, headless_parent& window) { // the release is lost
    press_at(window, control_places[volume]);
    press_at(window, control_places[volume], kShift);
}
void close_in_a_drag(panel_host& host, headless_parent& window) {
    press_at(window, control_places[volume]);
    host.close();
}
void press_switch(panel_host&, headless_parent& window) { press_at(window, control_places[flute]); }
void ask_for_file(panel_host& host, headless_parent&) { host.set(MENU_TAG, BANK_LOAD_TAG); }

TEST(EditorClosing, TheHostMayCloseEffectOrPanelInAnyTurnItGets) {
    struct row {
        const char* when;
        VstInt32 turn;
        hand use;
    };
    enum what { ends, closes, reopens };
    for (const row& r : {row{"a knob is taken", audioMasterBeginEdit, drag_knob},
                         {"a knob is turned by the wheel", audioMasterAutomate, turn_knob},
                         {"a knob is let go", audioMasterEndEdit, turn_knob},
                         {"a lost knob is let go", audioMasterEndEdit, press_knob_twice},
                         {"the panel is closed", audioMasterEndEdit, close_in_a_drag},
                         {"a knob shows itself", audioMasterIdle, drag_knob},
                         {"a switch is pressed", audioMasterBeginEdit, press_switch},
                         {"a switch shows itself", audioMasterIdle, press_switch},
                         {"a switch is set", audioMasterAutomate, press_switch},
                         {"the system asks for a file", audioMasterIdle, ask_for_file},
                         {"the host asks for a file", audioMasterOpenFileSelector, ask_for_file},
                         {"the host has asked", audioMasterCloseFileSelector, ask_for_file}})
        for (const char* where : {"outside of idle", "in idle", "while a file is asked for"})
            for (const what done : {ends, closes, reopens}) {
                SCOPED_TRACE(std::string(r.when) + " " + where + ": " + std::to_string(done));
                headless_parent window;
                panel_host host;
                host.chosen = headless_user::chosen_path = "/nowhere/at all";
                host.has_file_selector =
                    r.turn == audioMasterOpenFileSelector || r.turn == audioMasterCloseFileSelector;
                ASSERT_TRUE(host.open(&window));
                host.ask(effSetEditKnobMode, kCircularMode); // turns it as it is taken
                host.at[r.turn] = [&] {
                    host.at = {};
                    done == ends ? host.end() : host.close();
                    ASSERT_TRUE(done != reopens || host.open(&window));
                };
                const auto use_once = [&] {
                    window.at_events = {};
                    r.use(host, window);
                };
                if (where[0] == 'o') {
                    use_once();
                } else {
                    window.at_events = [use_once] { use_once(); };
                    where[0] == 'i' ? host.idle() : ask_for_file(host, window);
                }
                EXPECT_EQ(host.plugin == nullptr, done == ends);
                EXPECT_EQ(window.listener != nullptr, done == reopens) << "its window";
                EXPECT_TRUE(r.use != press_switch || done == ends || host.get(flute) == 0);
                if (done == ends) // nobody is left to be told of a gesture's end
                    continue;
                host.close();
                EXPECT_EQ(std::ranges::count(host.calls, 'b'), std::ranges::count(host.calls, 'e'))
                    << host.calls;
            }
}

struct EditorWithPrograms : PanelTest {
    EditorWithPrograms() : PanelTest(4) {}

    void act(MenuAction action) const { host.set(MENU_TAG, static_cast<float>(action)); }
};

TEST_F(EditorWithPrograms, TheValueIsTheProgramsNumber) {
    for (const auto& [value, program] : {std::pair{3.9f, 3}, {4, 3}, {1e30f, 3}, {1, 1}, {0, 0}}) {
        host.set(PROGRAM_TAG, value);
        EXPECT_EQ(host.plugin->getProgram(), program) << value;
    }
}

TEST_F(EditorWithPrograms, StoredSavedAndLoadedProgramsShowOnThePanel) {
    const temporary_folder folder;
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path);
    host.chosen = headless_user::chosen_path = "p"; // no shorter answer is one
    for (const bool by_host : {false, true}) {
        host.has_file_selector = by_host;
        host.set(PROGRAM_TAG, 0);
        host.set(volume, by_host ? 0.25f : 0.75f);
        act(PATCH_STORE_CURRENT);
        act(PATCH_SAVE_TAG);
        host.set(PROGRAM_TAG, 2);
        host.idle();
        act(PATCH_LOAD_TAG);
        EXPECT_EQ(host.get(volume), by_host ? 0.25f : 0.75f);
        host.idle();
        EXPECT_EQ(differs(), "");
        EXPECT_EQ(host.nb_requests, by_host ? 2 : 0);
    }
    act(BANK_SAVE_TAG);
    act(BANK_LOAD_TAG);
    EXPECT_EQ(host.get(volume), 0.25f);
    std::filesystem::current_path(before);
}

} // namespace
