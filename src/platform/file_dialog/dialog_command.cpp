#include "platform/file_dialog/dialog_command.h"

namespace {

/// It takes no relative folder to begin in.
command_line zenity(const file_request& request) {
    command_line line{"zenity", "--file-selection", "--title=" + request.title};
    if (request.saves)
        line.insert(line.end(), {"--save", "--confirm-overwrite"});
    for (const file_kind& kind : request.kinds)
        line.push_back("--file-filter=" + kind.name + " (*." + kind.extension + ") | *."
                       + kind.extension);
    line.push_back("--file-filter=* | *");
    return line;
}

command_line kdialog(const file_request& request) {
    std::string filter;
    for (const file_kind& kind : request.kinds)
        filter += "*." + kind.extension + " ";
    const char* action = request.saves ? "--getsavefilename" : "--getopenfilename";
    return {"kdialog", "--title", request.title, action, request.folder, filter};
}

} // namespace

std::vector<command_line> file_dialog_commands(const file_request& request) {
    return {zenity(request), kdialog(request)};
}
