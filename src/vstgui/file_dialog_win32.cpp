#include "vstgui/platform.h"

#include <span>
#include <string>
#include <windows.h>
// The common dialogs come after the system's own header.
#include <commdlg.h>

namespace {

/// Pairs of name and pattern, each ended by a zero byte, the list by one more.
std::string filters_of(const VstFileSelect& request) {
    std::string filters;
    const auto add = [&](const std::string& name, const std::string& pattern) {
        filters += name + " (" + pattern + ")";
        filters += '\0';
        filters += pattern;
        filters += '\0';
    };
    for (const VstFileType& type :
         std::span(request.fileTypes, static_cast<std::size_t>(request.nbFileTypes)))
        add(type.name, std::string("*.") + type.dosType);
    add("All files", "*.*");
    return filters;
}

} // namespace

/// Paths are in the system's code page, as the interface and the C library have them.
bool run_file_dialog(const VstFileSelect& request, void* parent, const std::function<bool()>&) {
    const std::string filters = filters_of(request);
    OPENFILENAMEA dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = static_cast<HWND>(parent);
    dialog.lpstrFilter = filters.c_str();
    dialog.lpstrFile = request.returnPath;
    dialog.nMaxFile = file_path_size;
    dialog.lpstrInitialDir = request.initialPath;
    dialog.lpstrTitle = request.title;
    dialog.lpstrDefExt = request.fileTypes[0].dosType;
    dialog.Flags = OFN_EXPLORER | OFN_NOCHANGEDIR | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY;
    if (request.command == kVstFileSave) {
        dialog.Flags |= OFN_OVERWRITEPROMPT;
        return GetSaveFileNameA(&dialog) != 0;
    }
    dialog.Flags |= OFN_FILEMUSTEXIST;
    return GetOpenFileNameA(&dialog) != 0;
}
