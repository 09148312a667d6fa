#pragma once
/// The instrument in its plain form: keys that add each oscillator by itself, oscillators read with
/// their interpolation, one filter after the other. What the fast form is held to.
/// [setup]

#include "organ/organ.h"

/// Replaces the render and process callbacks of an engine that korvel_create made.
void install_plain_korvel(organ* p_organ);
