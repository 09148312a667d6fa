#pragma once
/// What the user reads after a render.

#include "render/score.h"
#include "report/meter.h"

#include <string>

struct render_report {
    std::string output_name;
    double seconds;          ///< of audio
    double elapsed_seconds;  ///< of work
    int transposition;       ///< as wished
    bool has_known_keyboard; ///< whether the instrument is our own
    bool clips;              ///< whether the file holds whole numbers
    const score& music;
    const meter& levels;
};

/// A few lines, each with its line end.
[[nodiscard]] std::string report_text(const render_report& report);
