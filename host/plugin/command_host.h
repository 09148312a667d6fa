#pragma once
/// The host that the command is to a VST plug-in.

#include "plugin/activity.h"
#include "plugin/host.h"
#include "plugin/panel_edit.h"

#include <functional>
#include <string>

struct command_host {
    std::string plugin_folder{};
    double rate_hz = 48000;
    int block_frames = 64;
    host_activity does = host_activity::sets_up;
    VstTimeInfo time{};
    std::function<void(const panel_edit&)> hear_edit{}; ///< may be null

    [[nodiscard]] VstIntPtr answer(const host_call& call);

private:
    VstIntPtr hear(panel_edit::step what, const host_call& call) const;
};
