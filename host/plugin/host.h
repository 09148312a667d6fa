#pragma once
/// The host's side of the conversation: what a plug-in hears when it asks. Each effect has its own.

#include "vst/interface.h"

#include <functional>

struct host_call {
    AEffect* effect; ///< who asks; null is allowed
    VstInt32 opcode;
    VstInt32 index;
    VstIntPtr value;
    void* ptr;
    float opt;
};

/// A host as the plug-in sees it. It is asked on whatever thread the plug-in asks.
using host_answers = std::function<VstIntPtr(const host_call&)>;

/// The version, and 0 to everything else: a host that knows nothing.
[[nodiscard]] VstIntPtr answer_version(const host_call& call);

/// Calls a library's entry. What it gives, which may be null, asks `answers` from then on; they
/// stay where they are for as long as it lives. The record points to them by `user`.
[[nodiscard]] AEffect* effect_create(VstPluginMainProc entry, host_answers& answers);
