#pragma once
/// What the tests of the VST layer share: calls written down as text, and a host that writes down
/// what it is asked.

#include "vst/audioeffectx.h"

#include <sstream>
#include <string>
#include <type_traits>
#include <utility>

/// Two places that a host may point to; they are told apart by name: "ptr" and "value".
inline char host_data[256];
inline char other_data[256];

inline VstIntPtr address_of(void* pointer) { return reinterpret_cast<VstIntPtr>(pointer); }

inline std::string argument_text(const void* address) {
    return !address ? "null" : address == host_data ? "ptr" : address == other_data ? "value" : "?";
}
template <typename Number>
requires std::is_arithmetic_v<Number> Number argument_text(Number number) { return number; }

struct call_log {
    std::string calls; ///< "setProgram(3) suspend()"

    /// Returns 7, which is true as well, as the answer of the operation that was called.
    template <typename... Arguments>
    VstInt32 note(const std::string& name, Arguments... arguments) {
        std::ostringstream text;
        text << (calls.empty() ? "" : " ") << name << '(' << std::boolalpha;
        [[maybe_unused]] const char* separator = "";
        ((text << std::exchange(separator, ", ") << argument_text(arguments)), ...);
        calls += text.str() + ')';
        return 7;
    }
};

/// Requests are noted as "15(640, 480, null, 0)".
struct fake_host {
    static inline call_log log;
    static inline VstIntPtr reply = 0;
    static inline AEffect* caller = nullptr;

    fake_host() { log = {}, reply = 0, caller = nullptr; }

    static VstIntPtr VSTCALLBACK callback(AEffect* effect, VstInt32 opcode, VstInt32 index,
                                          VstIntPtr value, void* ptr, float opt) {
        caller = effect;
        log.note(std::to_string(opcode), index, value, ptr, opt);
        return reply;
    }
};

/// An effect of defaults.
struct default_effect : AudioEffectX {
    explicit default_effect(audioMasterCallback host = nullptr) : AudioEffectX(host, 4, 2) {}
    void processReplacing(float**, float**, VstInt32) noexcept override {}
    void setParameter(VstInt32 index, float) override { fake_host::log.note("set", index); }

    VstIntPtr ask(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                  float opt = 0) {
        return cEffect.dispatcher(&cEffect, opcode, index, value, ptr, opt);
    }
};
