#include "platform/file_dialog/dialog_command.h"

#include "platform/file_dialog/file_request.h"

namespace {

bool saves(const VstFileSelect& request) { return request.command == kVstFileSave; }

command_line zenity(const VstFileSelect& request) {
    command_line line{"zenity", "--file-selection", std::string("--title=") + request.title};
    if (saves(request))
        line.insert(line.end(), {"--save", "--confirm-overwrite"});
    for (const VstFileType& type : offered_types(request))
        line.push_back(std::string("--file-filter=") + type.name + " (*." + type.unixType + ") | *."
                       + type.unixType);
    line.push_back("--file-filter=* | *");
    return line;
}

command_line kdialog(const VstFileSelect& request) {
    std::string filter;
    for (const VstFileType& type : offered_types(request))
        filter += std::string("*.") + type.unixType + " ";
    const char* action = saves(request) ? "--getsavefilename" : "--getopenfilename";
    return {"kdialog", "--title", request.title, action, ".", filter};
}

} // namespace

std::vector<command_line> file_dialog_commands(const VstFileSelect& request) {
    return {zenity(request), kdialog(request)};
}
