/// The panel's window: how it comes and goes, and what it leaves.

#include "conformance/panel_player.h"

#include <memory>

namespace {

using PanelWindow = Row;

TEST_F(PanelWindow, ALostMouseEndsTheGesture) {
    panel_player user(running);
    for (const VstInt32 index : {volume, bass, volume}) { // what was lost once can be lost again
        user.press(control_places[index]);
        user.window.take_mouse_away();
        user.idle();
        user.expect_gestures(index, "be");
        user.window.give_mouse_back();
        user.release();
        user.move(learn_place);
        user.expect_gestures(index, "");
    }
    user.expect_shown();
}

/// The host closes the panel, or all of the instrument, in the middle of a click.
TEST_F(PanelWindow, MayBeClosedInAClick) {
    for (const VstInt32 turn :
         {audioMasterBeginEdit, audioMasterIdle, audioMasterAutomate, audioMasterEndEdit})
        for (const VstInt32 closing : {effEditClose, effClose}) {
            running.doing = "closed with opcode " + std::to_string(closing) + " in a callback with "
                            + std::to_string(turn);
            instrument* clicked = nullptr;
            panel_player user(running, 1, [&](const host_call& call) {
                if (clicked && call.opcode == turn) {
                    instrument& closed = *std::exchange(clicked, nullptr);
                    closing == effClose ? closed.close() : closed.ask(effEditClose);
                }
                return answer_version(call);
            });
            user.window.move(control_places[flute]);
            user.window.press();
            clicked = &user.playing;
            user.window.handle_messages();
            if (user.playing.record())
                user.playing.ask(effEditIdle);
            running.expect(clicked == nullptr, "the host gets no such turn");
            running.expect(user.window.nb_left() == 0, "a window is left");
            user.window.release();
        }
}

} // namespace
