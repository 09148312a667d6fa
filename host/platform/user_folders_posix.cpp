#include "platform/user_folders.h"

#include <cstdlib>

namespace {

/// By the desktops' convention, which wants absolute paths.
std::filesystem::path folder(const char* variable, const char* otherwise) {
    const char* named = std::getenv(variable);
    const char* home = std::getenv("HOME");
    const bool is_named = named && *named == '/';
    const auto base = is_named ? std::filesystem::path{named}
                               : std::filesystem::path{home ? home : "/"} / otherwise;
    return base / "tindelwax";
}

} // namespace

std::filesystem::path user_data_folder() { return folder("XDG_DATA_HOME", ".local/share"); }
std::filesystem::path user_state_folder() { return folder("XDG_STATE_HOME", ".local/state"); }
