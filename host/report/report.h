#pragma once
/// What the user reads after a render.

#include "report/keyboard.h"
#include "report/meter.h"

#include <string>

struct render_report {
    std::string output_name;
    double seconds;         ///< of audio
    double elapsed_seconds; ///< of work
    int transposition;      ///< as wished
    bool chooses_channels;  ///< whether the user named the channels
    keyboard keys;          ///< of the instrument
    int nb_outputs;         ///< of the instrument
    bool clips;             ///< whether the file holds whole numbers
    const score& music;
    const meter& levels;
};

/// A few lines, each with its line end.
[[nodiscard]] std::string report_text(const render_report& report);
