#pragma once
/// What says that it does not block, and does: a container grows, a lock is taken, something is
/// printed, an exception thrown, and a container grows behind a callback.

#include "realtime/closure.h"

constexpr int nb_violations = 5;

/// Commits the one of that number, from 1 on; compiled with VIOLATION defined, it has that alone.
void violate(int number) noexcept NONBLOCKING;
