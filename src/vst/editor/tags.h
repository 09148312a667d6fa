#pragma once
/// What a panel's control stands for. Tags below the number of parameters are parameters; the rest
/// are actions, which reach the editor as parameters of the plug-in.

enum PanelTag : int {
    MIDI_LEARN_TAG = 1024,
    MIDI_IN_TAG = 1025, ///< the lamp; it sends nothing
    PANIC_TAG = 1027,
    MENU_TAG = 1028,    ///< the value is a MenuAction
    PROGRAM_TAG = 1029, ///< the value is a program's number
};

/// No control of the panel sends these: they are for callers of the plug-in's setParameter.
enum MenuAction : int {
    BASS_R_TAG = 0,
    BASS_L_TAG = 1,
    BASS_MIXED_TAG = 2,
    BANK_LOAD_TAG = 3,
    BANK_SAVE_TAG = 4,
    PATCH_LOAD_TAG = 5,
    PATCH_SAVE_TAG = 6,
    PATCH_STORE_CURRENT = 7,
};
