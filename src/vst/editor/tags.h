#pragma once
/// The actions that reach the editor as parameters of the plug-in: those of the panel's controls,
/// and some that no control sends, for callers of the plug-in's setParameter.

#include "panel/tags.h"

enum EditorTag : int {
    MENU_TAG = 1028,    ///< the value is a MenuAction
    PROGRAM_TAG = 1029, ///< the value is a program's number
};

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
