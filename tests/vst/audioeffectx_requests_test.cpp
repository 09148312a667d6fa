#include "vst/audioeffectx.h"

#include "tests/vst/recording.h"

#include <functional>
#include <gtest/gtest.h>
#include <vector>

namespace {

// How a request makes its answer from the host's reply.
VstIntPtr as_is(VstIntPtr reply) { return reply; }
VstIntPtr is_set(VstIntPtr reply) { return reply != 0; }
VstIntPtr is_zero(VstIntPtr reply) { return reply == 0; }
VstIntPtr is_one(VstIntPtr reply) { return reply == 1; }
VstIntPtr or_1(VstIntPtr reply) { return reply == 0 ? 1 : reply; }
VstIntPtr or_44100(VstIntPtr reply) { return reply > 0 ? reply : 44100; }
VstIntPtr or_1024(VstIntPtr reply) { return reply > 0 ? reply : 1024; }
VstIntPtr nothing(VstIntPtr) { return 0; }

struct request_case {
    std::string request; ///< what the host sees; empty when nothing is sent
    VstIntPtr (*answer)(VstIntPtr reply);
    std::function<VstIntPtr(default_effect&)> ask;
};

template <typename Operation, typename... Arguments>
request_case row(const char* request, VstIntPtr (*answer)(VstIntPtr), Operation operation,
                 Arguments... arguments) {
    return {request, answer, [=](default_effect& effect) -> VstIntPtr {
                using result = std::invoke_result_t<Operation, default_effect&, Arguments...>;
                if constexpr (std::is_void_v<result>)
                    return std::invoke(operation, effect, arguments...), 0;
                else if constexpr (std::is_pointer_v<result>)
                    return reinterpret_cast<VstIntPtr>(
                        std::invoke(operation, effect, arguments...));
                else
                    return static_cast<VstIntPtr>(std::invoke(operation, effect, arguments...));
            }};
}

struct any_record { ///< the host's data, as whatever record a request takes
    template <typename Record>
    operator Record*() const {
        return reinterpret_cast<Record*>(host_data);
    }
};

std::vector<request_case> all_requests() {
    using X = AudioEffectX;
    const any_record data;
    return {
        row("1(0, 0, null, 0)", or_1, &X::getMasterVersion),
        row("2(0, 0, null, 0)", as_is, &X::getCurrentUniqueId),
        row("3(0, 0, null, 0)", nothing, &X::masterIdle),
        row("0(3, 0, null, 0.5)", nothing, &X::setParameterAutomated, 3, 0.5f),
        row("4(3, 0, null, 0)", is_zero, &X::__isInputConnectedDeprecated, 3),
        row("4(3, 1, null, 0)", is_zero, &X::__isOutputConnectedDeprecated, 3),
        row("6(0, 5, null, 0)", nothing, &X::__wantEventsDeprecated, 5),
        row("7(0, 5, null, 0)", as_is, &X::getTimeInfo, 5),
        row("8(0, 0, ptr, 0)", is_one, &X::sendVstEventsToHost, data),
        row("10(0, 5, null, 0)", as_is, &X::__tempoAtDeprecated, 5),
        row("11(0, 0, null, 0)", as_is, &X::__getNumAutomatableParametersDeprecated),
        row("12(0, 0, null, 0)", as_is, &X::__getParameterQuantizationDeprecated),
        row("13(0, 0, null, 0)", is_set, &X::ioChanged),
        row("14(0, 0, null, 0)", is_set, &X::__needIdleDeprecated),
        row("15(640, 480, null, 0)", is_set, &X::sizeWindow, 640, 480),
        row("16(0, 0, null, 0)", or_44100, &X::updateSampleRate),
        row("17(0, 0, null, 0)", or_1024, &X::updateBlockSize),
        row("18(0, 0, null, 0)", as_is, &X::getInputLatency),
        row("19(0, 0, null, 0)", as_is, &X::getOutputLatency),
        row("20(0, 0, null, 0)", as_is, &X::__getPreviousPlugDeprecated, 3),
        row("21(0, 0, null, 0)", as_is, &X::__getNextPlugDeprecated, 3),
        row("22(0, 0, null, 0)", as_is, &X::__willProcessReplacingDeprecated),
        row("23(0, 0, null, 0)", as_is, &X::getCurrentProcessLevel),
        row("24(0, 0, null, 0)", as_is, &X::getAutomationState),
        row("25(4, 3, ptr, 0)", is_set, &X::offlineStart, data, 3, 4),
        row("26(1, 3, ptr, 0)", is_set, &X::offlineRead, data, 3, true),
        row("26(0, 3, ptr, 0)", is_set, &X::offlineRead, data, 3, false),
        row("27(0, 3, ptr, 0)", is_set, &X::offlineWrite, data, 3),
        row("28(0, 0, null, 0)", is_set, &X::offlineGetCurrentPass),
        row("29(0, 0, null, 0)", is_set, &X::offlineGetCurrentMetaPass),
        row("30(0, 0, null, 0.5)", nothing, &X::__setOutputSamplerateDeprecated, 0.5f),
        row("31(0, 0, null, 0)", as_is, &X::__getOutputSpeakerArrangementDeprecated),
        row("32(0, 0, ptr, 0)", is_set, &X::getHostVendorString, data),
        row("33(0, 0, ptr, 0)", is_set, &X::getHostProductString, data),
        row("34(0, 0, null, 0)", as_is, &X::getHostVendorVersion),
        row("35(3, 5, ptr, 0.5)", as_is, &X::hostVendorSpecific, 3, 5, data, 0.5f),
        row("37(0, 0, ptr, 0)", is_set, &X::canHostDo, data),
        row("38(0, 0, null, 0)", as_is, &X::getHostLanguage),
        row("39(0, 0, ptr, 0)", as_is, &X::__openWindowDeprecated, data),
        row("40(0, 0, ptr, 0)", is_set, &X::__closeWindowDeprecated, data),
        row("41(0, 0, null, 0)", as_is, &X::getDirectory),
        row("42(0, 0, null, 0)", is_set, &X::updateDisplay),
        row("43(3, 0, null, 0)", is_set, &X::beginEdit, 3),
        row("44(3, 0, null, 0)", is_set, &X::endEdit, 3),
        row("45(0, 0, ptr, 0)", is_set, &X::openFileSelector, data),
        row("", nothing, &X::openFileSelector, nullptr),
        row("46(0, 0, ptr, 0)", is_set, &X::closeFileSelector, data),
        row("", nothing, &X::closeFileSelector, nullptr),
        row("48(0, 0, ptr, 0)", is_set, &X::__getChunkFileDeprecated, data),
        row("", nothing, &X::__getChunkFileDeprecated, nullptr),
        row("49(0, 0, null, 0)", as_is, &X::__getInputSpeakerArrangementDeprecated),
    };
}

TEST(AudioEffectXRequests, ReachTheHostAndBringItsReply) {
    for (const request_case& request : all_requests()) {
        for (VstIntPtr reply : {0, 1, -1, 7}) {
            fake_host host;
            fake_host::reply = reply;
            default_effect effect{fake_host::callback};
            EXPECT_EQ(request.ask(effect), request.answer(reply))
                << request.request << " replied " << reply;
            EXPECT_EQ(fake_host::log.calls, request.request);
            EXPECT_EQ(fake_host::caller, request.request.empty() ? nullptr : effect.getAeffect());
        }
    }
}

TEST(AudioEffectXRequests, WithoutHostAreAnsweredAsByZero) {
    for (const request_case& request : all_requests()) {
        default_effect effect;
        EXPECT_EQ(request.ask(effect), request.answer(0)) << request.request;
    }
}

TEST(AudioEffectXRequests, HostsRateAndBlockSizeStay) {
    fake_host host;
    fake_host::reply = 96000;
    default_effect effect{fake_host::callback};
    effect.updateSampleRate();
    effect.updateBlockSize();
    EXPECT_EQ(effect.getSampleRate(), 96000.0f);
    EXPECT_EQ(effect.getBlockSize(), 96000);
}

struct parameter_effect final : default_effect {
    using default_effect::default_effect;
    void setParameter(VstInt32, float) override { requests_before = fake_host::log.calls; }
    std::string requests_before = "never set";
};

TEST(AudioEffectXRequests, AutomatedParameterIsSetBeforeTheHostHears) {
    for (audioMasterCallback callback : {&fake_host::callback, audioMasterCallback{nullptr}}) {
        fake_host host;
        parameter_effect effect{callback};
        effect.setParameterAutomated(1, 0.5f);
        EXPECT_EQ(effect.requests_before, "");
    }
}

} // namespace
