#pragma once
/// What a host passes with an opcode, and what it replies, as the operations take it. All is [any].

#include "vst/interface.h"

#include <algorithm>
#include <cstdint>

/// Saturates: a number too wide for 32 bits keeps its sign, and stays too large where it was.
constexpr VstInt32 to_int32(VstIntPtr value) noexcept {
    return static_cast<VstInt32>(std::clamp<VstIntPtr>(value, INT32_MIN, INT32_MAX));
}

/// The host's pointer, as a pointer to whatever the operation expects there.
struct host_pointer {
    void* address;

    template <typename Pointee>
    operator Pointee*() const noexcept {
        return static_cast<Pointee*>(address);
    }
};

/// For the opcodes that bring a second pointer in their integer. 0 is null.
inline host_pointer to_pointer(VstIntPtr value) noexcept {
    return {reinterpret_cast<void*>(value)};
}
