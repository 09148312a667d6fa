#include "platform/file_dialog/file_dialog.h"
#include "platform/file_dialog/file_request.h"

#include <cstdio>
#include <span>
#include <string>
#include <windows.h>
// The common dialogs come after the system's own header.
#include <cderr.h>
#include <commdlg.h>

namespace {

/// Pairs of name and pattern, each ended by a zero byte, the list by one more.
std::string filters_of(std::span<const VstFileType> types) {
    std::string filters;
    const auto add = [&](const std::string& name, const std::string& pattern) {
        filters += name + " (" + pattern + ")";
        filters += '\0';
        filters += pattern;
        filters += '\0';
    };
    for (const VstFileType& type : types)
        add(type.name, std::string("*.") + type.dosType);
    add("All files", "*.*");
    return filters;
}

/// Nothing when the user has cancelled.
void report_failure(const VstFileSelect& request) {
    const DWORD error = CommDlgExtendedError();
    if (error == FNERR_BUFFERTOOSMALL)
        std::fprintf(stderr, "%s the path is longer than %zu bytes\n",
                     message_title(request).c_str(), file_path_size - 1);
    else if (error != 0)
        std::fprintf(stderr, "%s the file dialog failed: error 0x%lx\n",
                     message_title(request).c_str(), error);
}

} // namespace

/// Paths are in the system's code page, as the interface and the C library have them.
bool run_file_dialog(const VstFileSelect& request, void* parent, const std::function<bool()>&) {
    const std::span<const VstFileType> types = offered_types(request);
    const std::string filters = filters_of(types);
    const bool saves = request.command == kVstFileSave;
    OPENFILENAMEA dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = static_cast<HWND>(parent);
    dialog.lpstrFilter = filters.c_str();
    dialog.lpstrFile = request.returnPath;
    dialog.nMaxFile = file_path_size;
    dialog.lpstrInitialDir = request.initialPath;
    dialog.lpstrTitle = request.title;
    dialog.lpstrDefExt = types.empty() ? nullptr : types.front().dosType;
    dialog.Flags = OFN_EXPLORER | OFN_NOCHANGEDIR | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY
                   | (saves ? OFN_OVERWRITEPROMPT : OFN_FILEMUSTEXIST);
    if ((saves ? GetSaveFileNameA(&dialog) : GetOpenFileNameA(&dialog)) != 0)
        return true;
    report_failure(request);
    return false;
}
