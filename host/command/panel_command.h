#pragma once
/// "tindelwax panel": a picture of a plug-in's editor.

#include "command/instrument.h"

#include <string>

struct panel_request : instrument_request {
    std::string output{}; ///< named .png
    int scale = 1;        ///< of the plain size
};

/// Throws a failure.
void panel_run(const panel_request& request);
