#pragma once
/// A user with an instrument's panel in front of them.

#include "conformance/instrument.h"
#include "conformance/panel_window.h"
#include "tests/panel_picture/panel_picture.h"

constexpr VstInt32 first_knob = volume; ///< what comes before are switches
constexpr VstInt32 nb_panel_parameters = std::size(control_places);

class panel_player {
public:
    /// With an open panel, so many times as large as plain.
    explicit panel_player(trial& its_trial, int scale = 1, host_answers answers = answer_version);

    VstIntPtr open() { return playing.ask(effEditOpen, 0, 0, window.handle()); }
    void close() { playing.ask(effEditClose); }

    /// Lets the panel handle what happened and show it.
    void idle();

    // Each ends with idle.
    void move(CPoint on_panel);
    void press(CPoint on_panel);
    void release();
    void click(CPoint on_panel);
    void turn_wheel(CPoint on_panel, int notches);

    /// Expects that the host was told these of the parameter since the last time, a letter each:
    /// "bse" begins, sets and ends a gesture.
    void expect_gestures(VstInt32 index, const std::string& wanted);

    /// Expects the parameter to have that value.
    void expect_value(VstInt32 index, float wanted, float tolerance = 1e-6f);

    /// Expects the picture of the parameters as they are, and of the other controls as told.
    void expect_shown(panel_state state = {});

    trial& running;
    instrument playing;
    panel_window window;
};
