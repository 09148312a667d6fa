#pragma once
/// A user without a display, for tests, who answers every file dialog alike. [ui]

#include "platform/file_dialog/file_dialog.h"

#include <string>
#include <vector>

struct headless_user {
    static inline std::string chosen_path{};            ///< empty: the user cancels
    static inline std::vector<file_request> requests{}; ///< in order
};
