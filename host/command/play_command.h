#pragma once
/// "tindelwax play": the instrument live.

#include "command/instrument.h"
#include "live/sound_system.h"

#include <cstdio>

struct play_request : instrument_request {
    std::string song{}; ///< a file's name; empty for none
    int transposition = 0;
    std::string channels{};
    bool loops = false;
    sound_wishes sound{};
    bool lists = false;                ///< devices and ports, and nothing else
    std::optional<bool> shows_panel{}; ///< none: where a display is
    std::optional<int> scale{};        ///< of the panel; else it has its own size
    bool learns = false;
    bool forgets = false;
    std::string saved_file{}; ///< that gets the registration at the end
    bool is_quiet = false;
};

/// Plays until the user ends it, the song is over or its panel is closed; `p_output` is the real
/// standard output. Throws a failure.
void play_run(const play_request& request, std::FILE* p_output);

/// The controllers that were learned, as options for the command line.
[[nodiscard]] std::string learned_text();
