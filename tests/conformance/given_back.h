#pragma once
/// What the plug-in takes from the system it gives back.

#include "conformance/trial.h"

#include <functional>

/// Expects of rounds, which are played over and over, that at the end no more of the system's
/// resources is in use than at the beginning. At first the system takes what it keeps for itself,
/// such as the allocator's cache of freed blocks, and now and then its heap grows by a piece; what
/// is lost is lost each time.
void expect_given_back(const trial& running, const std::function<void()>& play_rounds);
