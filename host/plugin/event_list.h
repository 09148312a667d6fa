#pragma once
/// The list of events that a host hands over before each block.

#include "vst/interface.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Fixed room, so that neither the list nor a damaged song's heap of events grows.
class event_list {
public:
    static constexpr std::size_t capacity = 1024;

    event_list();
    event_list(const event_list&) = delete; // the records point at each other
    event_list& operator=(const event_list&) = delete;

    void clear() { nb_events_ = 0; }
    [[nodiscard]] bool is_empty() const { return nb_events_ == 0; }
    [[nodiscard]] bool is_full() const { return nb_events_ == capacity; }

    /// Adds a channel message of 2 or 3 bytes or a SysEx message, whose bytes must outlive the
    /// list's use. The list must not be full.
    void add(std::span<const std::uint8_t> message, int frame_offset);

    /// The list in the interface's form, valid until the next change.
    [[nodiscard]] VstEvents* records();

private:
    struct event_slot {
        union {
            VstEvent any;
            VstMidiEvent midi;
            VstMidiSysexEvent sysex;
        };
    };

    /// A VstEvents with all the pointers that may follow it.
    struct full_list {
        VstInt32 numEvents;
        VstIntPtr reserved;
        VstEvent* events[capacity];
    };
    static_assert(offsetof(full_list, events) == offsetof(VstEvents, events));

    std::vector<event_slot> slots_;
    full_list list_{};
    std::size_t nb_events_ = 0;
};
