#pragma once
/// What the player does to a parameter on a plug-in's panel.

struct panel_edit {
    enum class step { begins, sets, ends };

    step what;
    int parameter;
    float value = 0; ///< 0 to 1, where it sets
};
