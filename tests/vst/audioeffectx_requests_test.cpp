#include "vst/audioeffectx.h"

#include "tests/vst/recording.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>

namespace {

using effect = default_effect;
using answer = VstIntPtr (*)(VstIntPtr reply); ///< what the effect makes of a host's reply

constexpr answer same = [](VstIntPtr reply) { return reply; };
constexpr answer yes = [](VstIntPtr reply) { return VstIntPtr{reply != 0}; };
constexpr answer yes_by_0 = [](VstIntPtr reply) { return VstIntPtr{reply == 0}; };
constexpr answer yes_by_1 = [](VstIntPtr reply) { return VstIntPtr{reply == 1}; };
constexpr answer at_least_1 = [](VstIntPtr reply) { return reply ? reply : 1; };
constexpr answer or_44100 = [](VstIntPtr reply) { return reply > 0 ? reply : 44100; };
constexpr answer or_1024 = [](VstIntPtr reply) { return reply > 0 ? reply : 1024; };
constexpr answer none = [](VstIntPtr) { return VstIntPtr{0}; };

template <typename Record>
Record* at() {
    return reinterpret_cast<Record*>(host_data);
}

struct request_case {
    std::function<VstIntPtr(effect&)> ask;
    const char* request; ///< opcode(index, value, pointer, float); empty when nothing is sent
    answer made;
};

// A table, one row a request.
// clang-format off
const request_case cases[] = {
    {[](effect& e) { e.setParameterAutomated(3, 1); return 0; }, "set(3) 0(3, 0, null, 1)", none},
    {[](effect& e) { return e.getMasterVersion(); }, "1(0, 0, null, 0)", at_least_1},
    {[](effect& e) { return e.getCurrentUniqueId(); }, "2(0, 0, null, 0)", same},
    {[](effect& e) { e.masterIdle(); return 0; }, "3(0, 0, null, 0)", none},
    {[](effect& e) { return e.__isInputConnectedDeprecated(3); }, "4(3, 0, null, 0)", yes_by_0},
    {[](effect& e) { return e.__isOutputConnectedDeprecated(3); }, "4(3, 1, null, 0)", yes_by_0},
    {[](effect& e) { e.isSynth(true), e.resume(); return 0; }, "6(0, 1, null, 0)", none},
    {[](effect& e) { e.resume(); return 0; }, "", none},
    {[](effect& e) { return address_of(e.getTimeInfo(5)); }, "7(0, 5, null, 0)", same},
    {[](effect& e) { return e.sendVstEventsToHost(at<VstEvents>()); }, "8(0, 0, ptr, 0)", yes_by_1},
    {[](effect& e) { return e.__tempoAtDeprecated(5); }, "10(0, 5, null, 0)", same},
    {[](effect& e) { return e.ioChanged(); }, "13(0, 0, null, 0)", yes},
    {[](effect& e) { return e.sizeWindow(640, 480); }, "15(640, 480, null, 0)", yes},
    {[](effect& e) { return lround(e.updateSampleRate()); }, "16(0, 0, null, 0)", or_44100},
    {[](effect& e) { return e.updateBlockSize(); }, "17(0, 0, null, 0)", or_1024},
    {[](effect& e) { return e.getInputLatency(); }, "18(0, 0, null, 0)", same},
    {[](effect& e) { return e.getOutputLatency(); }, "19(0, 0, null, 0)", same},
    {[](effect& e) { return e.getCurrentProcessLevel(); }, "23(0, 0, null, 0)", same},
    {[](effect& e) { return e.getAutomationState(); }, "24(0, 0, null, 0)", same},
    {[](effect& e) { return e.offlineStart(at<VstAudioFile>(), 3, 4); }, "25(4, 3, ptr, 0)", yes},
    {[](effect& e) { return e.offlineRead(at<VstOfflineTask>(), 3); }, "26(1, 3, ptr, 0)", yes},
    {[](effect& e) { return e.offlineRead(at<VstOfflineTask>(), 3, false); },
     "26(0, 3, ptr, 0)", yes},
    {[](effect& e) { return e.offlineWrite(at<VstOfflineTask>(), 3); }, "27(0, 3, ptr, 0)", yes},
    {[](effect& e) { return e.getHostVendorString(host_data); }, "32(0, 0, ptr, 0)", yes},
    {[](effect& e) { return e.getHostProductString(host_data); }, "33(0, 0, ptr, 0)", yes},
    {[](effect& e) { return e.getHostVendorVersion(); }, "34(0, 0, null, 0)", same},
    {[](effect& e) { return e.hostVendorSpecific(3, 5, host_data, 0.5f); },
     "35(3, 5, ptr, 0.5)", same},
    {[](effect& e) { return e.canHostDo(host_data); }, "37(0, 0, ptr, 0)", yes},
    {[](effect& e) { return e.getHostLanguage(); }, "38(0, 0, null, 0)", same},
    {[](effect& e) { return address_of(e.getDirectory()); }, "41(0, 0, null, 0)", same},
    {[](effect& e) { return e.updateDisplay(); }, "42(0, 0, null, 0)", yes},
    {[](effect& e) { return e.beginEdit(3); }, "43(3, 0, null, 0)", yes},
    {[](effect& e) { return e.endEdit(3); }, "44(3, 0, null, 0)", yes},
    {[](effect& e) { return e.openFileSelector(at<VstFileSelect>()); }, "45(0, 0, ptr, 0)", yes},
    {[](effect& e) { return e.openFileSelector(nullptr); }, "", none},
    {[](effect& e) { return e.closeFileSelector(at<VstFileSelect>()); }, "46(0, 0, ptr, 0)", yes},
    {[](effect& e) { return e.closeFileSelector(nullptr); }, "", none},
};
// clang-format on

TEST(AudioEffectXRequests, ReachTheHostAndBringItsReply) {
    for (const auto& [ask, request, made] : cases) {
        for (const VstIntPtr reply : {0, 1, -1, 7}) {
            fake_host host;
            fake_host::reply = reply;
            effect asking{fake_host::callback};
            EXPECT_EQ(ask(asking), made(reply)) << request << " replied " << reply;
            EXPECT_EQ(fake_host::log.calls, request);
            EXPECT_EQ(fake_host::caller, *request ? asking.getAeffect() : nullptr);
        }
        effect alone;
        EXPECT_EQ(ask(alone), made(0)) << request << " without a host";
    }
}

} // namespace
