#pragma once
/// "tindelwax panel": a picture of a plug-in's editor.

#include "command/instrument.h"

#include <optional>
#include <string>

struct panel_request : instrument_request {
    std::string output{};       ///< named .png
    std::optional<int> scale{}; ///< times as large as plain; else it has its own size
};

/// Throws a failure.
void panel_run(const panel_request& request);
