#include "plugin/host.h"

#include <utility>

namespace {

/// While the entry runs there is no record yet that could tell which host is meant.
thread_local host_answers* p_creating = nullptr;

VstIntPtr VSTCALLBACK serve(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value,
                            void* ptr, float opt) {
    const host_call call{effect, opcode, index, value, ptr, opt};
    const auto* p_asked = p_creating;
    if (!p_asked && effect)
        p_asked = static_cast<const host_answers*>(effect->user);
    return p_asked ? (*p_asked)(call) : answer_version(call);
}

} // namespace

VstIntPtr answer_version(const host_call& call) {
    return call.opcode == audioMasterVersion ? kVstVersion : 0;
}

AEffect* effect_create(VstPluginMainProc entry, host_answers& answers) {
    auto* const p_outer = std::exchange(p_creating, &answers);
    AEffect* const record = entry(serve);
    p_creating = p_outer;
    if (record)
        record->user = &answers;
    return record;
}
