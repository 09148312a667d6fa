#include "conformance/panel_player.h"

#include <cmath>

panel_player::panel_player(trial& its_trial, int scale, host_answers answers)
    : running(its_trial), playing(its_trial, std::move(answers)), window(scale) {
    playing.prepare({});
    running.expect(scale == 1
                       || playing.ask(effVendorSpecific, kEditorScaleIndex, kEditorScaleValue,
                                      nullptr, static_cast<float>(scale))
                              == 1,
                   "the panel does not take the scale");
    running.expect(open() == 1, "the panel does not open");
    idle();
}

void panel_player::idle() {
    window.handle_messages();
    playing.ask(effEditIdle);
}

void panel_player::move(CPoint on_panel) {
    window.move(on_panel);
    idle();
}

void panel_player::press(CPoint on_panel) {
    move(on_panel);
    window.press();
    idle();
}

void panel_player::release() {
    window.release();
    idle();
}

void panel_player::click(CPoint on_panel) {
    press(on_panel);
    release();
}

void panel_player::turn_wheel(CPoint on_panel, int notches) {
    move(on_panel);
    window.turn_wheel(notches);
    idle();
}

void panel_player::expect_gestures(VstInt32 index, const std::string& wanted) {
    std::string told;
    float value = playing.get(index);
    for (const host_call& call : std::exchange(playing.its_host.calls, {})) {
        const char letter = call.opcode == audioMasterBeginEdit  ? 'b'
                            : call.opcode == audioMasterAutomate ? 's'
                            : call.opcode == audioMasterEndEdit  ? 'e'
                                                                 : '\0';
        if (letter == '\0')
            continue;
        told += letter;
        running.expect(call.index == index, "a hand on parameter " + std::to_string(index)
                                                + " reaches " + std::to_string(call.index));
        if (letter == 's')
            value = call.opt;
    }
    running.expect(value == playing.get(index), "the host is told another value than it gets");
    running.expect(told == wanted, "parameter " + std::to_string(index) + " tells \"" + told
                                       + "\", wanted \"" + wanted + "\"");
}

void panel_player::expect_value(VstInt32 index, float wanted, float tolerance) {
    const float value = playing.get(index);
    running.expect(std::fabs(value - wanted) <= tolerance,
                   "parameter " + std::to_string(index) + " is " + std::to_string(value)
                       + ", wanted " + std::to_string(wanted));
}

void panel_player::expect_shown(panel_state state) {
    for (VstInt32 index = 0; index < nb_panel_parameters; ++index)
        state.values[static_cast<std::size_t>(index)] = playing.get(index);
    const std::string difference = window.difference(panel_picture(state));
    running.expect(difference.empty(), "the picture is wrong " + difference);
}
