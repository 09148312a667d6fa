#pragma once
/// What systems say on standard error of a dialog that came to nothing. [ui]

#include "platform/file_dialog/file_dialog.h"

#include <cstdio>
#include <string>

/// One line, which begins with the dialog's title; a title may end in a space.
inline void report_failure(const file_request& request, const std::string& what) {
    const std::string title = request.title.substr(0, request.title.find_last_not_of(' ') + 1);
    std::fprintf(stderr, "%s %s\n", title.c_str(), what.c_str());
}

inline void report_long_path(const file_request& request) {
    report_failure(request, "the path is longer than " + std::to_string(max_path_bytes) + " bytes");
}
