#pragma once
/// The instrument's panel in a window of its own, whose keyboard plays. All is [ui].

#include "live/computer_keys.h"
#include "platform/player_window.h"
#include "plugin/open_editor.h"

class play_panel {
public:
    /// So many times as large as plain, where that is told and the plug-in heeds it. Throws a
    /// failure where it has no editor or the display shows no window.
    play_panel(plugin& instrument, live_instrument& played, std::optional<int> scale);

    /// To be called some 50 times a second; returns false once the user has closed the window.
    bool idle();

private:
    computer_keys keys_;
    player_window window_;
    open_editor editor_;
};
