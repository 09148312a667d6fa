#pragma once
/// The host's side of the conversation: what a plug-in hears when it asks.

#include "vst/interface.h"

#include <string>

struct host_state {
    std::string plugin_folder;
    double rate_hz = 48000;
    int block_frames = 64;
    bool renders = false; ///< offline, as opposed to asking or setting things up
    VstTimeInfo time{};
};

/// Makes `p_state` answer the callback; null lets it answer only what needs no state. A plug-in
/// already asks while it is created, when nothing in the call tells which one it is, so the command
/// runs one plug-in at a time. `p_state` must live until the next call of this.
void host_callback_serve(host_state* p_state);

VstIntPtr VSTCALLBACK host_callback(AEffect* effect, VstInt32 opcode, VstInt32 index,
                                    VstIntPtr value, void* ptr, float opt);
