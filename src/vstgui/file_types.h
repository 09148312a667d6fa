#pragma once
/// The file types that a request for a file offers.

#include "vst/interface.h"

#include <cstddef>
#include <span>

/// It may offer none.
[[nodiscard]] inline std::span<const VstFileType> offered_types(const VstFileSelect& request) {
    if (!request.fileTypes || request.nbFileTypes <= 0)
        return {};
    return {request.fileTypes, static_cast<std::size_t>(request.nbFileTypes)};
}
