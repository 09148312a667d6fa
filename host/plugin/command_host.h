#pragma once
/// The host that the command is to its instrument.

#include "plugin/host.h"

#include <string>

struct command_host {
    std::string plugin_folder{};
    double rate_hz = 48000;
    int block_frames = 64;
    bool renders = false; ///< offline, as opposed to asking or setting things up
    VstTimeInfo time{};

    [[nodiscard]] VstIntPtr answer(const host_call& call);
};
