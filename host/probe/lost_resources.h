#pragma once
/// What a plug-in takes from the system it gives back.

#include <functional>
#include <string>

/// Plays rounds over and over and compares what the process holds of the system before and after.
/// At first the system takes what it keeps for itself, such as the allocator's cache of freed
/// blocks, and now and then its heap grows by a piece; what is lost is lost each time. Returns ""
/// when a time comes at which nothing is, else what was.
[[nodiscard]] std::string lost_resources(const std::function<void()>& play_rounds);
