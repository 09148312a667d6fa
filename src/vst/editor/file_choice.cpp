#include "vst/editor/file_choice.h"

#include "platform/file_dialog/file_dialog.h"
#include "vst/editor/cfileselector.h"

#include <array>
#include <cstdio>

namespace {

constexpr VstFileType bank_type{"Bank", ".fxb", "fxb", "fxb", "audio/fxb", "audio/x-fxb"};
constexpr VstFileType patch_type{"Patch", ".fxp", "fxp", "fxp", "audio/fxp", "audio/x-fxp"};

} // namespace

std::optional<std::string> choose_file(AudioEffectX* effect, VstFileSelectCommand command,
                                       file_content content) {
    VstFileType type = content == file_content::bank ? bank_type : patch_type;
    std::array<char, max_path_bytes + 1> initial_path{".\\"};
    std::array<char, max_path_bytes + 1> return_path{};

    VstFileSelect request{};
    request.command = command;
    request.type = kVstFileType;
    request.nbFileTypes = 1;
    request.fileTypes = &type;
    std::snprintf(request.title, sizeof request.title, "%s %s ... ",
                  command == kVstFileLoad ? "Load" : "Save",
                  content == file_content::bank ? "bank" : "patch");
    request.initialPath = initial_path.data();
    request.returnPath = return_path.data();
    if (CFileSelector(effect).run(&request) == 0)
        return std::nullopt;
    return return_path.data();
}
