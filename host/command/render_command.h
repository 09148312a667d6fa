#pragma once
/// "tindelwax render": a song becomes an audio file.

#include "command/instrument.h"

#include <cstdio>
#include <optional>
#include <string>

struct render_request : instrument_request {
    std::string song{};   ///< "-" for standard input
    std::string output{}; ///< "-" for standard output; empty: named like the song
    int nb_bits = 0;      ///< 0: the format's finest
    double gain_db = 0;
    std::optional<double> peak_db{}; ///< to normalize to
    int transposition = 0;
    std::string channels{};
    double length_seconds = 0; ///< 0: the whole song
    double tail_seconds = 5;
};

/// Renders and reports; `p_output` is the real standard output. Throws a failure.
void render_run(const render_request& request, std::FILE* p_output);
