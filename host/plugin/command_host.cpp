#include "plugin/command_host.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace {

constexpr VstIntPtr automation_off = 1;
constexpr VstIntPtr language_english = 1;
constexpr VstIntPtr vendor_version = 1000;

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

VstIntPtr process_level(host_activity does) {
    constexpr VstIntPtr user = 1, realtime = 2, offline = 4;
    switch (does) {
    case host_activity::plays:
        return realtime;
    case host_activity::renders:
        return offline;
    default:
        return user;
    }
}

} // namespace

VstIntPtr command_host::hear(panel_edit::step what, const host_call& call) const {
    if (hear_edit)
        hear_edit({what, call.index, call.opt});
    return 0;
}

VstIntPtr command_host::answer(const host_call& call) {
    switch (call.opcode) {
    case audioMasterVersion:
        return kVstVersion;
    case audioMasterBeginEdit:
        return hear(panel_edit::step::begins, call);
    case audioMasterEndEdit:
        return hear(panel_edit::step::ends, call);
    case audioMasterAutomate:
        return hear(panel_edit::step::sets, call);
    case audioMasterCurrentId:
        return call.effect ? call.effect->uniqueID : 0;
    case __audioMasterWantMidiDeprecated:
    case audioMasterProcessEvents:
    case audioMasterUpdateDisplay:
        return 1;
    case audioMasterGetTime:
        return reinterpret_cast<VstIntPtr>(&time);
    case __audioMasterTempoAtDeprecated:
        return static_cast<VstIntPtr>(time.tempo * 10000);
    case audioMasterGetSampleRate:
        return static_cast<VstIntPtr>(rate_hz);
    case audioMasterGetBlockSize:
        return block_frames;
    case audioMasterGetCurrentProcessLevel:
        return process_level(does);
    case audioMasterGetAutomationState:
        return automation_off;
    case audioMasterGetVendorString:
        return write_text(call.ptr, "Quenmar");
    case audioMasterGetProductString:
        return write_text(call.ptr, "Tindelwax command");
    case audioMasterGetVendorVersion:
        return vendor_version;
    case audioMasterCanDo:
        return can_do(call.ptr);
    case audioMasterGetLanguage:
        return language_english;
    case audioMasterGetDirectory:
        return reinterpret_cast<VstIntPtr>(plugin_folder.c_str());
    default:
        return 0;
    }
}
