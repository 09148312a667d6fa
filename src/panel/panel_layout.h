#pragma once
/// What stands where on the panel, and the bitmaps that show it, in each of its sizes. [ui]

#include "vstgui/cbitmap.h"
#include "vstgui/ccontrollistener.h"

#include <optional>
#include <vector>

class CControl;
class CFrame;
class CMovieBitmap;
class COnOffButton;
struct control;

/// Returns the scale nearest to the wanted one that there are bitmaps for, 1, 2 or 3; nothing where
/// none is wanted: for zero, less, and what is no number.
[[nodiscard]] std::optional<int> nearest_scale(double wanted);

/// Returns what TINDELWAX_SCALE in the environment says, else 1.
[[nodiscard]] int default_scale();

/// The picture behind everything, whose size is the panel's.
[[nodiscard]] CReference<CBitmap> load_background(int scale);

/// Where controls are put.
struct panel_ground {
    CFrame& frame;
    CControlListener* listener;
    int scale;
};

// Each makes controls and gives them to the frame, which draws them in the order in which they are
// made. What the editor has to do with is returned.

/// Returns one for each parameter of the registry, null where the panel has none. A registry with
/// fewer parameters than the panel leaves places empty.
[[nodiscard]] std::vector<CControl*> add_parameter_controls(const panel_ground& ground,
                                                            const control& registry);

COnOffButton* add_learn_switch(const panel_ground& ground);
CMovieBitmap* add_midi_lamp(const panel_ground& ground);
void add_panic_button(const panel_ground& ground);
