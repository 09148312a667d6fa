#include "plugin/event_list.h"

#include <algorithm>

namespace {
constexpr std::uint8_t sysex_start = 0xF0;
}

event_list::event_list() : slots_(capacity) {
    for (std::size_t i = 0; i < capacity; ++i)
        list_.events[i] = &slots_[i].any;
}

void event_list::add(std::span<const std::uint8_t> message, int frame_offset) {
    event_slot& slot = slots_[nb_events_++];
    if (message[0] == sysex_start) {
        // The interface has no const here; a dump is read, never written.
        auto* dump = const_cast<char*>(reinterpret_cast<const char*>(message.data()));
        slot.sysex = {.type = kVstSysExType,
                      .byteSize = sizeof(VstMidiSysexEvent),
                      .deltaFrames = frame_offset,
                      .flags = 0,
                      .dumpBytes = static_cast<VstInt32>(message.size()),
                      .resvd1 = 0,
                      .sysexDump = dump,
                      .resvd2 = 0};
        return;
    }
    slot.midi = {};
    slot.midi.type = kVstMidiType;
    slot.midi.byteSize = sizeof(VstMidiEvent);
    slot.midi.deltaFrames = frame_offset;
    std::copy_n(message.begin(), std::min(message.size(), std::size_t{3}), slot.midi.midiData);
}

VstEvents* event_list::records() {
    list_.numEvents = static_cast<VstInt32>(nb_events_);
    return reinterpret_cast<VstEvents*>(&list_);
}
