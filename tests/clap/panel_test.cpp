#include "tests/clap/host.h"
#include "tests/panel_picture/panel_picture.h"
#ifndef _WIN32
#include "platform/display.h"
#endif

namespace {

constexpr clap_id flute = 0, volume = 6;

struct ClapPanel : testing::Test {
    bool create(const char* api, bool is_floating) {
        return gui.create(clap.plugin, api, is_floating);
    }
    bool set_parent(const char* api) {
        clap_window parent{api, {}};
        parent.ptr = window.handle();
        return gui.set_parent(clap.plugin, &parent);
    }
    void idle() {
        window.handle_messages();
        clap.extension<clap_plugin_timer_support>(clap_timer_support_id).on_timer(clap.plugin, 7);
    }
    void click(CPoint place) {
        window.move({scale * place.x, scale * place.y});
        for (const auto act : {&editor_window::press, &editor_window::release}) {
            (window.*act)();
            idle();
        }
    }

    /// Has the panel learn a controller for the tab that was clicked, and moves it by that.
    void learn(int controller) {
        click(learn_place);
        EXPECT_EQ(differs(false, true), "");
        clap.process(64, {midi_at(0, {0xB2, controller, 0})});
        clap.process(64, {midi_at(0, {0xB2, controller, 0})});
        EXPECT_EQ(clap.value(flute), 0.0);
        EXPECT_EQ(differs(true), "");
    }

    /// Returns "" once the panel shows the parameters as they are.
    std::string differs(bool lamp = false, bool learn = false) {
        panel_state state{.learn = learn, .lamp = lamp};
        for (std::size_t i = 0; i < state.values.size(); ++i)
            state.values[i] = static_cast<float>(clap.value(static_cast<clap_id>(i)));
        idle();
        idle(); // draws what the first has found
        return shown_difference(window, panel_picture(state), 0, scale);
    }

#ifndef _WIN32
    display server{display::choice::unseen};
#endif
    int scale = 1; ///< of the panel in the window
    editor_window window{480, 400};
    hosted clap{};
    const clap_plugin_gui& gui = clap.extension<clap_plugin_gui>(clap_gui_id);
};

TEST_F(ClapPanel, ShowsTheInstrumentAndTellsTheHostOfItsUser) {
    EXPECT_FALSE(create(clap_system_window_api, true));
    EXPECT_FALSE(create("wayland", false));
    EXPECT_FALSE(create(nullptr, false));
    clap.has_timers = false;
    EXPECT_FALSE(create(clap_system_window_api, false));
    clap.has_timers = true;
    EXPECT_FALSE(gui.show(clap.plugin) || gui.set_scale(clap.plugin, 2));
    ASSERT_TRUE(create(clap_system_window_api, false));
    EXPECT_FALSE(create(clap_system_window_api, false));
    std::uint32_t width = 1, height = 1;
    EXPECT_TRUE(gui.set_scale(clap.plugin, 1.75));
    EXPECT_TRUE(gui.get_size(clap.plugin, &width, &height));
    EXPECT_TRUE(width == 960 && height == 800);
    EXPECT_FALSE(gui.set_scale(clap.plugin, 0));
    EXPECT_TRUE(gui.set_scale(clap.plugin, 1));
    EXPECT_TRUE(gui.adjust_size(clap.plugin, &width, &height));
    EXPECT_TRUE(width == 480 && height == 400 && gui.set_size(clap.plugin, 480, 400));
    EXPECT_FALSE(gui.set_size(clap.plugin, 480, 401));
    EXPECT_FALSE(gui.show(clap.plugin)) << "in no window";
    EXPECT_FALSE(set_parent("cocoa"));
    ASSERT_TRUE(set_parent(clap_system_window_api));
    ASSERT_TRUE(gui.show(clap.plugin));
    EXPECT_EQ(clap.nb_timers, 1);
    EXPECT_EQ(differs(), "");

    clap.process(64, {value_at(9, volume, 0.8), value_at(9, flute, 0)});
    EXPECT_EQ(differs(), "") << "moved by the host";

    click(control_places[flute]);
    EXPECT_EQ(clap.value(flute), 1.0);
    EXPECT_GT(clap.nb_flushes, 0);
    clap.takes_events = false;
    clap.process(64);
    clap.takes_events = true;
    clap.process(64);
    ASSERT_EQ(clap.sent.size(), 3u) << "what the host does not take waits";
    EXPECT_EQ(clap.sent[0].header.type, CLAP_EVENT_PARAM_GESTURE_BEGIN);
    EXPECT_EQ(clap.sent[1].header.type, CLAP_EVENT_PARAM_VALUE);
    EXPECT_EQ(clap.sent[2].header.type, CLAP_EVENT_PARAM_GESTURE_END);
    EXPECT_EQ(clap.sent[1].value.value, 1.0);
    for (const any_event& event : clap.sent)
        EXPECT_EQ(event.gesture.param_id, flute);

    learn(20);

    for (const int larger : {2, 3, 1}) {
        EXPECT_TRUE(gui.hide(clap.plugin));
        EXPECT_EQ(clap.nb_timers, 0);
        EXPECT_TRUE(gui.set_scale(clap.plugin, scale = larger));
        window.resize(480 * scale, 400 * scale);
        EXPECT_TRUE(gui.show(clap.plugin));
        EXPECT_FALSE(gui.set_scale(clap.plugin, scale % 3 + 1)) << "while it is shown";
        const double before = clap.value(flute);
        click(control_places[flute]);
        EXPECT_EQ(clap.value(flute), 1 - before);
        EXPECT_EQ(differs(), "") << scale;
    }
}

/// Another seed is another player, in whose place the panel's gestures act then.
TEST_F(ClapPanel, FollowsAStateAndARate) {
    hosted other{48000, "2"};
    other.process(64, {value_at(0, volume, 0.25), value_at(0, flute, 0)});
    clap_stream saved;
    const clap_ostream out = saved.output();
    ASSERT_TRUE(other.extension<clap_plugin_state>(clap_state_id).save(other.plugin, &out));
    ASSERT_TRUE(create(clap_system_window_api, false) && set_parent(clap_system_window_api)
                && gui.show(clap.plugin));
    for (int i = 0; i < 3; ++i) {
        clap_stream from{.bytes = saved.bytes};
        const clap_istream in = from.input();
        ASSERT_TRUE(clap.extension<clap_plugin_state>(clap_state_id).load(clap.plugin, &in));
        EXPECT_EQ(differs(), "");
        click(control_places[flute]);
        clap.process(64);
        EXPECT_EQ(clap.value(flute), 1.0);
        EXPECT_EQ(differs(), "");
        learn(30 + i);
        clap.plugin->deactivate(clap.plugin);
        clap.activate(44100 + i);
        click(control_places[flute]);
        EXPECT_EQ(clap.value(flute), 1.0);
        learn(40 + i);
    }
} // and the plug-in goes with its panel open

} // namespace
