#pragma once
/// The events of an atom sequence, of which nothing is believed but where it begins and how long it
/// says it is. All is [audio].

#include "realtime/nonblocking.h"

#include <algorithm>
#include <cstddef>
#include <lv2/atom/atom.h>
#include <span>

/// Returns the bytes of the sequence's events.
inline std::span<const std::byte>
atom_events(const LV2_Atom_Sequence& sequence) noexcept NONBLOCKING {
    constexpr std::size_t head = sizeof sequence.body;
    if (sequence.atom.size < head)
        return {};
    return {reinterpret_cast<const std::byte*>(&sequence + 1), sequence.atom.size - head};
}

/// Takes the first event from the bytes; its own follow it. Returns null where no whole event is
/// left.
inline const LV2_Atom_Event* take_event(std::span<const std::byte>& bytes) noexcept NONBLOCKING {
    constexpr std::size_t head = sizeof(LV2_Atom_Event), alignment = 8;
    if (bytes.size() < head)
        return nullptr;
    const auto* const taken = reinterpret_cast<const LV2_Atom_Event*>(bytes.data());
    if (taken->body.size > bytes.size() - head)
        return nullptr;
    const std::size_t size = (head + taken->body.size + alignment - 1) / alignment * alignment;
    bytes = bytes.subspan(std::min(size, bytes.size()));
    return taken;
}
