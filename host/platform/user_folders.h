#pragma once
/// Where a player's own files lie.

#include <filesystem>

/// What the player makes: registrations.
[[nodiscard]] std::filesystem::path user_data_folder();

/// What the program remembers from one time to the next.
[[nodiscard]] std::filesystem::path user_state_folder();
