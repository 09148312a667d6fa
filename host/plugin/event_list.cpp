#include "plugin/event_list.h"

#include <algorithm>

namespace {
constexpr std::uint8_t sysex_start = 0xF0;
}

void event_list::clear() {
    messages_.clear();
    dumps_.clear();
    pointers_.clear();
}

void event_list::add(std::span<const std::uint8_t> message, int frame_offset) {
    if (message[0] == sysex_start)
        add_sysex(message, frame_offset);
    else
        add_midi(message, frame_offset);
}

void event_list::add_midi(std::span<const std::uint8_t> message, int frame_offset) {
    VstMidiEvent& event = messages_.emplace_back();
    event.type = kVstMidiType;
    event.byteSize = sizeof event;
    event.deltaFrames = frame_offset;
    std::copy_n(message.begin(), std::min(message.size(), std::size_t{3}), event.midiData);
    add(reinterpret_cast<VstEvent*>(&event));
}

void event_list::add_sysex(std::span<const std::uint8_t> dump, int frame_offset) {
    VstMidiSysexEvent& event = dumps_.emplace_back();
    event.type = kVstSysExType;
    event.byteSize = sizeof event;
    event.deltaFrames = frame_offset;
    event.dumpBytes = static_cast<VstInt32>(dump.size());
    // The interface has no const here; a dump is read, never written.
    event.sysexDump = const_cast<char*>(reinterpret_cast<const char*>(dump.data()));
    add(reinterpret_cast<VstEvent*>(&event));
}

void event_list::add(VstEvent* event) { pointers_.push_back(event); }

VstEvents* event_list::records() {
    constexpr std::size_t pointer_bytes = sizeof(void*);
    const std::size_t nb_bytes = offsetof(VstEvents, events) + pointers_.size() * pointer_bytes;
    memory_.resize(nb_bytes / sizeof(VstEvents) + 1);
    VstEvents& list = memory_.front();
    list = {.numEvents = static_cast<VstInt32>(pointers_.size()), .reserved = 0, .events = {}};
    std::copy(pointers_.begin(), pointers_.end(), &list.events[0]);
    return &list;
}
