#include "vstgui/child_process.h"
#include "vstgui/dialog_command.h"
#include "vstgui/platform.h"

#include <cstdio>
#include <cstring>
#include <optional>
#include <string>

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

} // namespace

bool run_file_dialog(const VstFileSelect& request, void*, const std::function<bool()>& keep_alive) {
    auto dialog = start_dialog(request);
    if (!dialog) {
        std::fprintf(stderr, "%s no file dialog found: install zenity or kdialog\n", request.title);
        return false;
    }
    std::string path;
    while (dialog->read(path, turn_ms))
        if (!keep_alive())
            return false;
    path.resize(path.find_last_not_of('\n') + 1);
    if (path.size() >= file_path_size) {
        std::fprintf(stderr, "%s %s: the path is longer than %zu bytes\n", request.title,
                     path.c_str(), file_path_size - 1);
        return false;
    }
    std::memcpy(request.returnPath, path.c_str(), path.size() + 1);
    return !path.empty();
}
