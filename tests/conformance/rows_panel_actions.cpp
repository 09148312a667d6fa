/// What the panel does besides parameters.

#include "conformance/panel_player.h"
#include "probe/signal.h"

#include <cstring>

namespace {

using PanelActions = Row;

TEST_F(PanelActions, KeysAreTakenAndDoNothing) {
    panel_player user(running);
    for (const CPoint place : control_places)
        user.click(place);
    running.expect(user.window.gets_keys(), "the panel takes the keyboard");
    user.playing.its_host.calls.clear();
    running.expect(user.playing.ask(effEditKeyDown, 'q', 0) == 1, "a key is not taken");
    running.expect(user.playing.ask(effEditKeyUp, 'q', 0) == 0, "a key's release is taken");
    user.idle();
    user.expect_gestures(volume, "");
    user.expect_shown();
}

/// The knob touched last learns the next controller, whatever its channel; the others are as
/// before.
TEST_F(PanelActions, TheKnobTouchedLastLearns) {
    panel_player user(running);
    user.click(learn_place);
    user.idle();
    user.expect_shown({.learn = true});
    user.expect_gestures(volume, "");
    user.turn_wheel(control_places[contour], 1);
    user.playing.send(controller(0, 20, 64, 5));
    user.playing.send(controller(0, 20, 127, 5));
    user.playing.send(controller(0, 20, 0, 4));
    for (int i = 0; i < 3; ++i)
        user.idle();
    user.expect_value(contour, 1);
    user.expect_shown();
    for (int i = 0; i < 2; ++i) { // on, and off again
        user.click(learn_place);
        user.idle();
    }
    user.turn_wheel(control_places[bass], 1);
    for (int i = 0; i < 2; ++i)
        user.playing.send(controller(0, 21, 127, 5));
    for (int i = 0; i < 3; ++i)
        user.idle();
    user.expect_value(bass, 0.51f);
    user.expect_shown();
}

TEST_F(PanelActions, PanicEndsTheSound) {
    panel_player user(running);
    const recording held = user.playing.render({note_on(0, 60), note_on(0, 26)}, 9600);
    user.click(lamp_place); // does nothing
    running.expect(peak(user.playing.render({}, 9600).right) > peak(held.right) / 2,
                   "the lamp ends the sound");
    user.press(panic_place);
    user.expect_shown({.panic = true});
    user.release();
    user.playing.render({}, 48000);
    running.expect(peak(user.playing.render({}, 4800).right) < peak(held.right) / 1000,
                   "panic leaves a sound");
    user.expect_gestures(volume, "");
    user.idle();
    user.idle();
    user.expect_shown();
}

constexpr VstInt32 menu_tag = 1028, program_tag = 1029;

TEST_F(PanelActions, MenuSetsTheOutputs) {
    panel_player user(running);
    user.playing.set(bass_chords, 0);
    user.playing.send(note_on(0, 60));
    struct choice {
        float value;
        bool right, left;
    };
    for (const auto& [value, right, left] : {choice{0, false, true},
                                             {1, true, false},
                                             {2, true, true},
                                             {2.5f, true, true},
                                             {8, true, true},
                                             {-1, false, true}}) {
        user.playing.set(menu_tag, value);
        user.playing.render({}, 48000);
        const recording sound = user.playing.render({}, 4800);
        running.expect((peak(sound.right) > 1e-3) == right && (peak(sound.left) > 1e-3) == left,
                       "menu value " + std::to_string(value) + " gives other outputs");
    }
}

std::string request_text(const VstFileSelect& request) {
    std::string text = request.command == kVstFileSave ? "save: " : "load: ";
    text += request.title;
    for (VstInt32 i = 0; i < request.nbFileTypes; ++i)
        text += std::string(request.fileTypes[i].name) + " " + request.fileTypes[i].dosType;
    return text;
}

/// The host's own dialogs, in which the user chooses a file. There are no programs, so nothing
/// comes of it.
TEST_F(PanelActions, MenuAsksForFiles) {
    std::vector<std::string> requests;
    panel_player user(running, 1, [&](const host_call& call) -> VstIntPtr {
        if (call.opcode == audioMasterCanDo)
            return 1;
        if (call.opcode != audioMasterOpenFileSelector)
            return answer_version(call);
        auto* request = static_cast<VstFileSelect*>(call.ptr);
        requests.push_back(request_text(*request));
        std::strcpy(request->returnPath, "no such folder/bank.fxb");
        return 1;
    });
    for (const float value : {3.0f, 4.0f, 5.0f, 6.0f, 7.0f})
        user.playing.set(menu_tag, value);
    user.playing.set(program_tag, 3.9f);
    running.expect(requests
                       == std::vector<std::string>{"load: Load bank ... Bank fxb",
                                                   "save: Save bank ... Bank fxb",
                                                   "load: Load patch ... Patch fxp",
                                                   "save: Save patch ... Patch fxp"},
                   "the dialogs are others");
    running.expect(user.playing.its_host.nb_calls(audioMasterCloseFileSelector) == 4,
                   "a dialog is not closed");
    running.expect(peak(user.playing.render({note_on(0, 60)}, 4800).right) > 1e-3,
                   "it does not play any more");
}

} // namespace
