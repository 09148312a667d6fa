#pragma once
/// What a panel's control stands for. Tags below the number of parameters are parameters; the rest
/// are actions.

enum PanelTag : int {
    MIDI_LEARN_TAG = 1024,
    MIDI_IN_TAG = 1025, ///< the lamp; it sends nothing
    PANIC_TAG = 1027,
};
