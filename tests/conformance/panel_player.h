#pragma once
/// A user with an instrument's panel in front of them.

#include "conformance/instrument.h"
#include "conformance/panel_window.h"
#include "tests/panel_picture/panel_picture.h"

/// Places on the panel's controls. Parameters by their index.
constexpr CPoint control_places[]{{212, 176}, {268, 176}, {325, 176}, {382, 176}, {99, 176},
                                  {155, 176}, {367, 299}, {116, 299}, {242, 299}};
constexpr CPoint learn_place{323, 29}, lamp_place{368, 29}, panic_place{415, 29};

constexpr VstInt32 first_knob = volume; ///< what comes before are switches
constexpr VstInt32 nb_panel_parameters = std::size(control_places);

class panel_player {
public:
    /// With an open panel.
    explicit panel_player(trial& its_trial, CPoint corner_on_screen = {40, 30},
                          host_answers answers = answer_ordinarily);

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

    /// Expects the picture of the parameters as they are.
    void expect_shown(bool learn = false, bool lamp = false);

    trial& running;
    instrument playing;
    panel_window window;
};
