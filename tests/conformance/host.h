#pragma once
/// The host that a plug-in under test talks to. Each instrument has its own.

#include "vst/interface.h"

#include <functional>
#include <vector>

struct host_call {
    AEffect* effect;
    VstInt32 opcode;
    VstInt32 index;
    VstIntPtr value;
    void* ptr;
    float opt;
};

using host_answers = std::function<VstIntPtr(const host_call&)>;

/// The version, and 0 to everything else.
[[nodiscard]] VstIntPtr answer_ordinarily(const host_call& call);

struct host {
    host_answers answer = answer_ordinarily;
    std::vector<host_call> calls{};

    [[nodiscard]] long nb_calls(VstInt32 opcode) const;
};

/// The library's main, with this host. Its effects' records point back to the host by `user`.
[[nodiscard]] AEffect* create_effect(host& its_host, VstPluginMainProc entry);
