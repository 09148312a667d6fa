#pragma once
/// What stands where on the panel, and the bitmaps that show it. [ui]

#include "vstgui/cbitmap.h"
#include "vstgui/ccontrollistener.h"

#include <vector>

class CControl;
class CFrame;
class CMovieBitmap;
class COnOffButton;
struct control;

/// The picture behind everything, whose size is the panel's.
[[nodiscard]] CReference<CBitmap> load_background();

// Each makes controls and gives them to the frame, which draws them in the order in which they are
// made. What the editor has to do with is returned.

/// Returns one for each parameter of the registry, null where the panel has none. A registry with
/// fewer parameters than the panel leaves places empty.
[[nodiscard]] std::vector<CControl*>
add_parameter_controls(CFrame& frame, CControlListener* listener, const control& registry);

COnOffButton* add_learn_switch(CFrame& frame, CControlListener* listener);
CMovieBitmap* add_midi_lamp(CFrame& frame, CControlListener* listener);
void add_panic_button(CFrame& frame, CControlListener* listener);
