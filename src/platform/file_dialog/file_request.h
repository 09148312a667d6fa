#pragma once
/// What systems read of a request for a file.

#include "vst/interface.h"

#include <cstddef>
#include <span>
#include <string>

/// The file types that it offers; it may offer none.
[[nodiscard]] inline std::span<const VstFileType> offered_types(const VstFileSelect& request) {
    if (!request.fileTypes || request.nbFileTypes <= 0)
        return {};
    return {request.fileTypes, static_cast<std::size_t>(request.nbFileTypes)};
}

/// Its title as the beginning of a message: a title may end in a space.
[[nodiscard]] inline std::string message_title(const VstFileSelect& request) {
    std::string title = request.title;
    title.resize(title.find_last_not_of(' ') + 1);
    return title;
}
