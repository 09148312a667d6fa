#pragma once
/// The instrument in its plain form: keys that add each oscillator by itself, oscillators read with
/// their interpolation, one filter after the other. What the fast form is held to.
/// [setup]

#include "organ/organ.h"

/// Returns what korvel_create does, with other render and process callbacks.
[[nodiscard]] organ* plain_korvel_create(const char* name);
