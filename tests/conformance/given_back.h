#pragma once
/// What the plug-in takes from the system it gives back.

#include "conformance/platform.h"
#include "conformance/trial.h"

/// Expects no more of the system's resources in use than `before`, but for the system's own
/// book-keeping.
void expect_given_back(const trial& running, const resources& before);
