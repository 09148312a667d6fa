/// What the panel shows, and what a user does to it.

#include "conformance/panel_player.h"
#include "probe/signal.h"

namespace {

using Panel = Row;

TEST_F(Panel, HasItsSizeBeforeItOpens) {
    instrument asked(running);
    ERect* size = nullptr;
    running.expect(asked.ask(effEditGetRect, 0, 0, &size) == 1 && size, "the panel has no size");
    running.expect(size->top == 0 && size->left == 0 && size->bottom == 400 && size->right == 480,
                   "the panel is not 480 by 400");
}

TEST_F(Panel, ShowsEveryValue) {
    panel_player user(running);
    for (VstInt32 index = 0; index < nb_panel_parameters; ++index)
        for (int step = 0; step <= 32; ++step) {
            running.doing =
                "parameter " + std::to_string(index) + " at " + std::to_string(step) + "/32";
            user.playing.set(index, static_cast<float>(step) / 32);
            user.idle();
            user.expect_shown();
        }
}

TEST_F(Panel, ShowsMidiAtTheNextIdle) {
    panel_player user(running);
    user.playing.send(controller(0, 7, 13));
    user.playing.send(controller(0, 83, 0));
    for (int i = 0; i < 3; ++i) // the lamp comes and goes
        user.idle();
    user.expect_value(volume, 13.0f / 127);
    user.expect_value(mellow, 0);
    user.expect_shown();
}

TEST_F(Panel, LampLightsForEvents) {
    panel_player user(running);
    user.playing.send(note_on(0, 60));
    for (const bool lit : {false, true, false}) {
        user.idle(); // sees the event, shows it, shows that there was no more
        user.expect_shown({.lamp = lit});
    }
}

TEST_F(Panel, Drags) {
    for (const int scale : {1, 2, 3}) {
        running.doing = "at scale " + std::to_string(scale);
        panel_player user(running, scale);
        for (VstInt32 index = first_knob; index < nb_panel_parameters; ++index) {
            const CPoint knob = control_places[index];
            user.playing.set(index, 0.5f);
            user.press({knob.x, knob.y - 15});
            user.move({750, knob.y});  // beyond the window, a quarter turn on
            user.window.turn_wheel(1); // for nobody
            user.release();
            user.expect_gestures(index, "bse");
            user.expect_value(index, 0.8f, 0.02f);
            user.expect_shown();
        }
        user.click(control_places[flute]);
        user.expect_gestures(flute, "bse");
        user.expect_shown();
    }
}

TEST_F(Panel, WheelAndDefaults) {
    panel_player user(running);
    for (VstInt32 index = first_knob; index < nb_panel_parameters; ++index) {
        const CPoint knob = control_places[index];
        const float at_first = user.playing.get(index);
        user.playing.set(index, 0.25f);
        user.turn_wheel(knob, 1);
        user.expect_gestures(index, "bse");
        user.expect_value(index, 0.26f);
        user.window.hold(panel_window::key::shift, true);
        user.turn_wheel(knob, -1);
        user.window.hold(panel_window::key::shift, false);
        user.expect_gestures(index, "bse");
        user.expect_value(index, 0.2575f);
        user.window.click_twice();
        user.idle();
        user.expect_gestures(index, "bebse");
        user.expect_value(index, at_first);
        user.click(knob); // a third click is a first one
        user.expect_gestures(index, "be");
        user.playing.set(index, 0.25f);
        user.window.hold(panel_window::key::control, true);
        user.click(knob);
        user.window.hold(panel_window::key::control, false);
        user.expect_gestures(index, "bse");
        user.expect_value(index, at_first);
        user.expect_shown();
    }
}

TEST_F(Panel, Switches) {
    panel_player user(running);
    for (VstInt32 index = 0; index < first_knob; ++index)
        for (int i = 0; i < 2; ++i) {
            const float before = user.playing.get(index);
            user.click(control_places[index]);
            user.expect_gestures(index, "bse");
            user.expect_value(index, 1 - before);
            user.expect_shown();
        }
}

/// With the panel open, dragged and closed over and over.
TEST_F(Panel, LeavesTheSoundAsItIs) {
    panel_player user(running);
    instrument alone(running, set_up{});
    recording sound, wanted;
    for (int block = 0; block < 60; ++block) {
        switch (block % 10) {
        case 1:
            user.open();
            break;
        case 2:
            user.press(control_places[volume]);
            break;
        case 9:
            user.close();
            break;
        default:
            user.move({300 + 5 * block, 280});
            break;
        }
        for (const host_call& call : std::exchange(user.playing.its_host.calls, {}))
            if (call.opcode == audioMasterAutomate)
                alone.set(call.index, call.opt);
        for (instrument* played : {&user.playing, &alone}) {
            played->send(note_on(0, 30 + block % 40));
            played->process(played == &alone ? wanted : sound, 256);
        }
    }
    user.window.release();
    running.frame = static_cast<long>(worst_index(sound.right, wanted.right));
    running.expect(sound.right == wanted.right && sound.left == wanted.left
                       && peak(wanted.right) > 0,
                   "the panel changes the sound");
}

} // namespace
