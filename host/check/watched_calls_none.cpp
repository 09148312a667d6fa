// For programs built for a sanitizer, which has functions of its own under the library's names, and
// for Windows, where a plug-in's calls do not pass through the program.

#include "check/watched_calls.h"

void watched_calls_begin() noexcept {}

watched_calls watched_calls_end() noexcept { return {}; }

bool watched_calls_are_counted() { return false; }
