#include "vst/audioeffectx.h"

#include "tests/vst/recording.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

template <typename Record>
Record* data_as() {
    return reinterpret_cast<Record*>(host_data);
}

// Most requests pass a number through and take any reply but 0 for yes: these are the others.
struct request_case {
    std::function<VstIntPtr(default_effect&)> ask;
    std::string request;  ///< what the host sees; empty when nothing is sent
    VstIntPtr answers[4]; ///< to the replies 0, 1, -1 and 7
};

const request_case cases[] = {
    {[](auto& e) { return e.getMasterVersion(); }, "1(0, 0, null, 0)", {1, 1, -1, 7}},
    {[](auto& e) { return e.__isInputConnectedDeprecated(3); }, "4(3, 0, null, 0)", {1, 0, 0, 0}},
    {[](auto& e) { return e.__isOutputConnectedDeprecated(3); }, "4(3, 1, null, 0)", {1, 0, 0, 0}},
    {[](auto& e) { return address_of(e.getTimeInfo(5)); }, "7(0, 5, null, 0)", {0, 1, -1, 7}},
    {[](auto& e) { return e.sendVstEventsToHost(data_as<VstEvents>()); },
     "8(0, 0, ptr, 0)",
     {0, 1, 0, 0}},
    {[](auto& e) { return e.sizeWindow(640, 480); }, "15(640, 480, null, 0)", {0, 1, 1, 1}},
    {[](auto& e) { return static_cast<VstIntPtr>(e.updateSampleRate()); },
     "16(0, 0, null, 0)",
     {44100, 1, 44100, 7}},
    {[](auto& e) { return e.updateBlockSize(); }, "17(0, 0, null, 0)", {1024, 1, 1024, 7}},
    {[](auto& e) { return e.offlineStart(data_as<VstAudioFile>(), 3, 4); },
     "25(4, 3, ptr, 0)",
     {0, 1, 1, 1}},
    {[](auto& e) { return e.offlineRead(data_as<VstOfflineTask>(), 3); },
     "26(1, 3, ptr, 0)",
     {0, 1, 1, 1}},
    {[](auto& e) { return e.offlineRead(data_as<VstOfflineTask>(), 3, false); },
     "26(0, 3, ptr, 0)",
     {0, 1, 1, 1}},
    {[](auto& e) { return e.hostVendorSpecific(3, 5, host_data, 0.5f); },
     "35(3, 5, ptr, 0.5)",
     {0, 1, -1, 7}},
    {[](auto& e) { return e.canHostDo(host_data); }, "37(0, 0, ptr, 0)", {0, 1, 1, 1}},
    {[](auto& e) { return e.openFileSelector(nullptr); }, "", {}},
    {[](auto& e) { return e.closeFileSelector(nullptr); }, "", {}},
};

TEST(AudioEffectXRequests, ReachTheHostAndBringItsReply) {
    constexpr VstIntPtr replies[] = {0, 1, -1, 7};
    for (const request_case& row : cases)
        for (std::size_t i = 0; i < std::size(replies); ++i) {
            fake_host host;
            fake_host::reply = replies[i];
            default_effect effect{fake_host::callback};
            EXPECT_EQ(row.ask(effect), row.answers[i]) << row.request << " replied " << replies[i];
            EXPECT_EQ(fake_host::log.calls, row.request);
            EXPECT_EQ(fake_host::caller, row.request.empty() ? nullptr : effect.getAeffect());
        }
}

TEST(AudioEffectXRequests, WithoutHostAreAnsweredAsByZero) {
    for (const request_case& row : cases) {
        default_effect effect;
        EXPECT_EQ(row.ask(effect), row.answers[0]) << row.request;
    }
}

struct parameter_effect final : default_effect {
    using default_effect::default_effect;
    void setParameter(VstInt32 index, float) override {
        EXPECT_EQ(fake_host::log.calls, "");
        is_set = index;
    }
    VstInt32 is_set = 0;
};

TEST(AudioEffectXRequests, AutomatedParameterIsSetBeforeTheHostHears) {
    fake_host host;
    parameter_effect effect{fake_host::callback};
    effect.setParameterAutomated(3, 0.5f);
    EXPECT_EQ(effect.is_set, 3);
    EXPECT_EQ(host.log.calls, "0(3, 0, null, 0.5)");
}

} // namespace
