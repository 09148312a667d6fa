#include "conformance/host.h"

#include <algorithm>

namespace {

/// While main runs there is no record yet that could tell which host is meant.
thread_local host* creating_host = nullptr;

VstIntPtr VSTCALLBACK serve(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value,
                            void* ptr, float opt) {
    auto* asked = creating_host;
    if (!asked && effect)
        asked = static_cast<host*>(effect->user);
    if (!asked)
        return 0;
    const host_call call{effect, opcode, index, value, ptr, opt};
    asked->calls.push_back(call);
    return asked->answer(call);
}

} // namespace

VstIntPtr answer_ordinarily(const host_call& call) {
    return call.opcode == audioMasterVersion ? kVstVersion : 0;
}

long host::nb_calls(VstInt32 opcode) const {
    return static_cast<long>(std::ranges::count(calls, opcode, &host_call::opcode));
}

AEffect* create_effect(host& its_host, VstPluginMainProc entry) {
    creating_host = &its_host;
    AEffect* effect = entry(serve);
    creating_host = nullptr;
    if (effect)
        effect->user = &its_host;
    return effect;
}
