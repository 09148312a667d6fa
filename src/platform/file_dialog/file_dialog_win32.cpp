#include "platform/file_dialog/file_dialog.h"

#include "platform/file_dialog/dialog_report.h"

#include <array>
#include <windows.h>
// The common dialogs come after the system's own header.
#include <cderr.h>
#include <commdlg.h>

namespace {

/// Pairs of name and pattern, each ended by a zero byte, the list by one more.
std::string filters_of(const std::vector<file_kind>& kinds) {
    std::string filters;
    const auto add = [&](const std::string& name, const std::string& pattern) {
        filters += name + " (" + pattern + ")";
        filters += '\0';
        filters += pattern;
        filters += '\0';
    };
    for (const file_kind& kind : kinds)
        add(kind.name, "*." + kind.extension);
    add("All files", "*.*");
    return filters;
}

/// Nothing when the user has cancelled.
void report_if_failed(const file_request& request) {
    const DWORD error = CommDlgExtendedError();
    if (error == FNERR_BUFFERTOOSMALL)
        report_long_path(request);
    else if (error != 0)
        report_failure(request, "the file dialog failed: error " + std::to_string(error));
}

} // namespace

/// Paths are in the system's code page, as plug-in interfaces and the C library have them.
std::optional<std::string> file_dialog_run(const file_request& request, void* parent,
                                           const std::function<bool()>&) {
    const std::string filters = filters_of(request.kinds);
    std::array<char, max_path_bytes + 1> path{};
    OPENFILENAMEA dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = static_cast<HWND>(parent);
    dialog.lpstrFilter = filters.c_str();
    dialog.lpstrFile = path.data();
    dialog.nMaxFile = static_cast<DWORD>(path.size());
    dialog.lpstrInitialDir = request.folder.c_str();
    dialog.lpstrTitle = request.title.c_str();
    dialog.lpstrDefExt = request.kinds.empty() ? nullptr : request.kinds.front().extension.c_str();
    dialog.Flags = OFN_EXPLORER | OFN_NOCHANGEDIR | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY
                   | (request.saves ? OFN_OVERWRITEPROMPT : OFN_FILEMUSTEXIST);
    if ((request.saves ? GetSaveFileNameA(&dialog) : GetOpenFileNameA(&dialog)) != 0)
        return path.data();
    report_if_failed(request);
    return std::nullopt;
}
