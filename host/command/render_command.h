#pragma once
/// "tindelwax render": a song becomes an audio file.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

struct render_request {
    std::string song{};   ///< "-" for standard input
    std::string output{}; ///< "-" for standard output; empty: named like the song
    std::filesystem::path plugin_file{};
    int rate_hz = 48000;
    int block_frames = 64;
    int nb_bits = 0; ///< 0: the format's finest
    std::uint32_t seed = 1;
    std::vector<std::string> settings{}; ///< "Name=value"
    double gain_db = 0;
    std::optional<double> peak_db{}; ///< to normalize to
    int transposition = 0;
    std::string channels{};
    double length_seconds = 0; ///< 0: the whole song
    double tail_seconds = 5;
};

/// Renders and reports; `p_output` is the real standard output. Throws a failure.
void render_run(const render_request& request, std::FILE* p_output);
