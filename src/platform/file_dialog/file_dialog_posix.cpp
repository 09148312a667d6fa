#include "platform/file_dialog/file_dialog.h"

#include "platform/file_dialog/child_process.h"
#include "platform/file_dialog/dialog_command.h"
#include "platform/file_dialog/dialog_report.h"

#include <algorithm>
#include <strings.h>
#include <unistd.h>
#include <utility>

// A toolkit's dialog would bring that toolkit into the host's process; the desktop's own dialog
// programs do not.

namespace {

constexpr int turn_ms = 20; ///< between two signs of life of the panel

std::optional<ChildProcess> start_dialog(const file_request& request) {
    for (const command_line& command : file_dialog_commands(request))
        if (auto started = ChildProcess::run(command))
            return started;
    return std::nullopt;
}

bool exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

bool has_extension(const std::string& path, const std::vector<file_kind>& kinds) {
    const char* const extension = path.c_str() + (path.rfind('.') + 1); // all without a dot
    return std::ranges::any_of(kinds, [extension](const file_kind& kind) {
        return strcasecmp(extension, kind.extension.c_str()) == 0;
    });
}

/// The dialogs take a name as it is typed; with the first kind's extension their filter finds the
/// file again. Nothing is written over that the user was not asked about: a name that has a file,
/// which the dialog asked about, stays as it is, and so does one whose longer form has a file.
std::string path_to_save(const std::string& path, const std::vector<file_kind>& kinds) {
    if (kinds.empty() || has_extension(path, kinds))
        return path;
    const std::string longer = path + "." + kinds.front().extension;
    return exists(path) || exists(longer) ? path : longer;
}

bool fits(const std::string& path) { return path.size() <= max_path_bytes; }

} // namespace

std::optional<std::string> file_dialog_run(const file_request& request, void*,
                                           const std::function<bool()>& keep_alive) {
    auto dialog = start_dialog(request);
    if (!dialog) {
        report_failure(request, "no file dialog found: install zenity or kdialog");
        return std::nullopt;
    }
    std::string path; // and a line's end, and no more of a program that prints for ever
    while (path.size() <= max_path_bytes + 1 && dialog->read(path, turn_ms))
        if (!keep_alive())
            return std::nullopt;
    path.resize(path.find_last_not_of('\n') + 1);
    if (fits(path)) {
        const bool is_path = !path.empty() && path.find('\0') == std::string::npos;
        if (!dialog->succeeds() || !is_path)
            return std::nullopt;
        if (request.saves)
            path = path_to_save(path, request.kinds);
    }
    if (fits(path))
        return path;
    report_long_path(request);
    return std::nullopt;
}
