#include "platform/player_window.h"
#include "tests/host/comes_true.h"
#include "tests/host/platform/desktop.h"

#include <gtest/gtest.h>

namespace {

constexpr std::uint8_t z_key = 52, x_key = 53; // as X counts them
constexpr int width = 300, height = 200;

struct PlayerWindow : testing::Test {
    desktop user;
    player_window window{width, height, "Organ"};
    xcb_window_t id = static_cast<xcb_window_t>(reinterpret_cast<std::uintptr_t>(window.handle()));

    PlayerWindow() {
        EXPECT_TRUE(comes_true([this] { return told().empty() && user.focus() == id; }));
    }

    std::string told() {
        user.sync();
        const window_events events = window.take_events();
        std::string text;
        for (const window_key& key : events.keys)
            text += (key.is_pressed ? '+' : '-') + std::to_string(key.code) + ' ';
        return text + (events.lost_keys ? "lost " : "") + (events.is_closed ? "closed " : "");
    }
    void send(std::uint8_t type, xcb_timestamp_t time) const {
        xcb_key_press_event_t event{};
        event.response_type = type;
        event.detail = z_key;
        event.time = time;
        xcb_send_event(user.server, 0, id, 0, reinterpret_cast<const char*>(&event));
    }
};

TEST_F(PlayerWindow, IsKnownToTheWindowManagerAndCloses) {
    EXPECT_EQ(user.property(id, XCB_ATOM_WM_NAME), "Organ");
    const std::string hints = user.property(id, XCB_ATOM_WM_NORMAL_HINTS);
    const std::uint32_t sizes[] = {width, height, width, height}; // the smallest, the largest
    EXPECT_EQ(hints.substr(20, 16), std::string(reinterpret_cast<const char*>(sizes), 16));
    user.close(id);
    EXPECT_EQ(told(), "closed ");
    user.shown.stop();
    EXPECT_EQ(told(), "closed ");
}

TEST_F(PlayerWindow, TellsAKeyOnceHoweverItRepeats) {
    const xcb_window_t editor = xcb_generate_id(user.server);
    xcb_create_window(user.server, XCB_COPY_FROM_PARENT, editor, id, 0, 0, width, height, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(user.server, editor);
    xcb_test_fake_input(user.server, XCB_MOTION_NOTIFY, 0, 0, user.root, 9, 9, 0); // into it
    const std::uint32_t presses = XCB_EVENT_MASK_KEY_PRESS;
    xcb_change_window_attributes(user.server, id, XCB_CW_EVENT_MASK, &presses);
    user.strike(XCB_KEY_PRESS, z_key);
    for (int i = 0; i < 3; ++i)
        std::free(xcb_wait_for_event(user.server));
    EXPECT_EQ(told(), "+44 ");
    user.strike(XCB_KEY_RELEASE, z_key);
    EXPECT_EQ(told() + told(), "-44 ");
}

TEST_F(PlayerWindow, TellsARepetitionFromAKeyStruckAgain) {
    using strokes = std::vector<std::pair<std::uint8_t, xcb_timestamp_t>>;
    constexpr std::uint8_t down = XCB_KEY_PRESS, up = XCB_KEY_RELEASE;
    for (const auto& [events, text] :
         {std::pair{strokes{{down, 1}, {up, 2}, {down, 3}}, "+44 -44 +44 "},
          {{{up, 4}}, ""}, // which may repeat still
          {{{down, 4}, {up, 5}}, ""},
          {{{down, 6}, {up, 7}}, "-44 +44 "},
          {{}, "-44 "}}) {
        for (const auto& [type, time] : events)
            send(type, time);
        EXPECT_EQ(told(), text);
    }
}

TEST_F(PlayerWindow, NoKeyHangsThatIsLetGoElsewhere) {
    user.strike(XCB_KEY_PRESS, z_key);
    user.strike(XCB_KEY_PRESS, x_key);
    xcb_grab_keyboard(user.server, 0, user.root, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC,
                      XCB_GRAB_MODE_ASYNC);
    user.strike(XCB_KEY_RELEASE, z_key);
    EXPECT_EQ(told(), "+44 +45 ");
    xcb_ungrab_keyboard(user.server, XCB_CURRENT_TIME);
    EXPECT_EQ(told(), "-44 ");
    xcb_set_input_focus(user.server, XCB_INPUT_FOCUS_NONE, user.root, XCB_CURRENT_TIME);
    EXPECT_EQ(told(), "lost ");
}

} // namespace
