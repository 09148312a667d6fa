#pragma once
/// "tindelwax info": what a plug-in says of itself.

#include <filesystem>
#include <string>

/// The text to print. Throws a failure if the plug-in cannot be loaded.
[[nodiscard]] std::string info_text(const std::filesystem::path& plugin_file);
