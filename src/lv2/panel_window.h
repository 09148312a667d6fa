#pragma once
/// The panel in an LV2 host's window: what the user moves reaches the host as its ports' values.
///
/// A host that hands over the plug-in itself sees all of the panel; there the host's interface runs
/// on the thread that restores states. For any other host the panel shows what the ports say: its
/// parameters can be moved, but what MIDI moves, the lamp, learning and panic need the instrument.
/// All is [ui].

#include "instrument_panel/instrument_panel.h"

#include <cstdint>
#include <lv2/ui/ui.h>
#include <memory>

/// How the host is told of the user.
struct lv2_told_host {
    LV2UI_Write_Function write;
    LV2UI_Controller controller;
    const LV2UI_Touch* touch; ///< null where it does not ask for gestures
};

class lv2_panel_window final : public instrument_panel {
public:
    lv2_panel_window(instrument& shown, const lv2_told_host& told);
    ~lv2_panel_window();

    [[nodiscard]] bool holds(int index) const { return held == index; } ///< the user, a control

    void beginEdit(int index) override;
    void endEdit(int index) override;

private:
    void parameterMoved(int index, float value) override;
    void touch(int index, bool is_grabbed) const;

    lv2_told_host host;
    int held = -1; ///< the parameter whose control the user has, or -1
};

/// What stands behind the host's handle of its panel.
class lv2_panel {
public:
    /// Without the plug-in's instrument, an instrument that nobody hears stands in for it.
    lv2_panel(instrument* shown, const lv2_told_host& told);

    lv2_panel_window& get_window() { return window; }

    /// A port's value, as the host has it. What the user holds is not moved under the hand.
    void hear_port(std::uint32_t port, float value);

    void idle();

private:
    std::unique_ptr<instrument> stand_in; ///< null where it shows the plug-in's
    lv2_panel_window window;
};
