#include "plugin/host_callback.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace {

constexpr VstIntPtr process_level_user = 1;
constexpr VstIntPtr process_level_offline = 4;
constexpr VstIntPtr automation_off = 1;
constexpr VstIntPtr language_english = 1;
constexpr VstIntPtr vendor_version = 1000;

host_state* p_served = nullptr;

VstIntPtr write_text(void* ptr, std::string_view text) {
    if (!ptr)
        return 0;
    auto* destination = static_cast<char*>(ptr);
    std::copy(text.begin(), text.end(), destination);
    destination[text.size()] = 0;
    return 1;
}

VstIntPtr can_do(const void* ptr) {
    constexpr std::array abilities{"sendVstEvents", "sendVstMidiEvent", "sendVstTimeInfo"};
    return ptr && std::any_of(abilities.begin(), abilities.end(), [ptr](const char* ability) {
               return std::strcmp(ability, static_cast<const char*>(ptr)) == 0;
           });
}

VstIntPtr answer_from_state(host_state& state, VstInt32 opcode) {
    switch (opcode) {
    case audioMasterGetTime:
        return reinterpret_cast<VstIntPtr>(&state.time);
    case __audioMasterTempoAtDeprecated:
        return static_cast<VstIntPtr>(state.time.tempo * 10000);
    case audioMasterGetSampleRate:
        return static_cast<VstIntPtr>(state.rate_hz);
    case audioMasterGetBlockSize:
        return state.block_frames;
    case audioMasterGetCurrentProcessLevel:
        return state.renders ? process_level_offline : process_level_user;
    case audioMasterGetDirectory:
        return reinterpret_cast<VstIntPtr>(state.plugin_folder.c_str());
    default:
        return 0;
    }
}

} // namespace

void host_callback_serve(host_state* p_state) { p_served = p_state; }

VstIntPtr VSTCALLBACK host_callback(AEffect* effect, VstInt32 opcode, VstInt32, VstIntPtr,
                                    void* ptr, float) {
    switch (opcode) {
    case audioMasterVersion:
        return kVstVersion;
    case audioMasterCurrentId:
        return effect ? effect->uniqueID : 0;
    case __audioMasterWantMidiDeprecated:
    case audioMasterProcessEvents:
    case audioMasterUpdateDisplay:
        return 1;
    case audioMasterGetAutomationState:
        return automation_off;
    case audioMasterGetVendorString:
        return write_text(ptr, "Quenmar");
    case audioMasterGetProductString:
        return write_text(ptr, "Tindelwax command");
    case audioMasterGetVendorVersion:
        return vendor_version;
    case audioMasterCanDo:
        return can_do(ptr);
    case audioMasterGetLanguage:
        return language_english;
    default:
        return p_served ? answer_from_state(*p_served, opcode) : 0;
    }
}
