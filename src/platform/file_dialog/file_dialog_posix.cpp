#include "platform/file_dialog/child_process.h"
#include "platform/file_dialog/dialog_command.h"
#include "platform/file_dialog/file_dialog.h"
#include "platform/file_dialog/file_request.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <strings.h>
#include <unistd.h>

// A toolkit's dialog would bring that toolkit into the host's process; the desktop's own dialog
// programs do not.

namespace {

constexpr int turn_ms = 20; ///< between two signs of life of the panel

std::optional<ChildProcess> start_dialog(const VstFileSelect& request) {
    for (const command_line& command : file_dialog_commands(request))
        if (auto started = ChildProcess::run(command))
            return started;
    return std::nullopt;
}

bool exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

bool has_extension(const std::string& path, std::span<const VstFileType> types) {
    const char* const extension = path.c_str() + path.rfind('.') + 1;
    return std::ranges::any_of(types, [extension](const VstFileType& type) {
        return strcasecmp(extension, type.unixType) == 0;
    });
}

/// The dialogs take a name as it is typed; with the first type's extension their filter finds the
/// file again. Nothing is written over that the user was not asked about: a name that has a file,
/// which the dialog asked about, stays as it is, and so does one whose longer form has a file.
std::string path_to_save(const std::string& path, std::span<const VstFileType> types) {
    if (types.empty() || has_extension(path, types))
        return path;
    const std::string longer = path + "." + types.front().unixType;
    return exists(path) || exists(longer) ? path : longer;
}

} // namespace

bool run_file_dialog(const VstFileSelect& request, void*, const std::function<bool()>& keep_alive) {
    auto dialog = start_dialog(request);
    if (!dialog) {
        std::fprintf(stderr, "%s no file dialog found: install zenity or kdialog\n",
                     message_title(request).c_str());
        return false;
    }
    std::string path;
    while (dialog->read(path, turn_ms))
        if (!keep_alive())
            return false;
    path.resize(path.find_last_not_of('\n') + 1);
    if (!dialog->succeeds() || path.empty())
        return false;
    if (request.command == kVstFileSave)
        path = path_to_save(path, offered_types(request));
    if (path.size() >= file_path_size) {
        std::fprintf(stderr, "%s %s: the path is longer than %zu bytes\n",
                     message_title(request).c_str(), path.c_str(), file_path_size - 1);
        return false;
    }
    std::memcpy(request.returnPath, path.c_str(), path.size() + 1);
    return true;
}
