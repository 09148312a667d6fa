#pragma once
/// The instrument that the user named, and how it is to be set up.

#include "console/console.h"

#include <cstdint>

struct instrument_request {
    std::filesystem::path plugin_file{};
    int rate_hz = 48000;
    int block_frames = 64;
    std::uint32_t seed = 1;
    std::string registration{};          ///< a name or a file; empty for none
    std::vector<std::string> settings{}; ///< "Name=value", which refine the registration
    std::vector<std::string> mappings{}; ///< "CC=Name" and the like
    bool sustains = false;
    bool expresses = false;
};

/// Rehearses in a child process what is planned with the instrument. Throws a failure as plugin_try
/// does.
void instrument_try(const instrument_request& request,
                    const std::function<void(plugin&)>& rehearse);

/// What the player's feet and controllers do. The instrument, set up, outlives it. Throws a failure
/// of misuse for what cannot be.
[[nodiscard]] console_options instrument_console(const instrument_request& request,
                                                 plugin& instrument);

/// Announces rate and block and sets the parameters. Throws a failure of misuse for settings that
/// cannot be.
void instrument_set_up(plugin& instrument, const instrument_request& request);
