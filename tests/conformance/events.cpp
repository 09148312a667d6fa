#include "conformance/events.h"

#include <algorithm>

void event_list::add(const midi& event, VstInt32 delta_frames) {
    VstMidiEvent& message = messages.emplace_back();
    message.type = kVstMidiType;
    message.byteSize = sizeof message;
    message.deltaFrames = delta_frames;
    std::ranges::transform(event.bytes, message.midiData,
                           [](int byte) { return static_cast<char>(byte); });
    add(reinterpret_cast<VstEvent*>(&message));
}

void event_list::add_sysex(std::span<char> dump) {
    VstMidiSysexEvent& event = dumps.emplace_back();
    event.type = kVstSysExType;
    event.byteSize = sizeof event;
    event.dumpBytes = static_cast<VstInt32>(dump.size());
    event.sysexDump = dump.data();
    add(reinterpret_cast<VstEvent*>(&event));
}

void event_list::add(VstEvent* event) { pointers.push_back(event); }

VstEvents* event_list::record() {
    memory.resize(std::max(sizeof(VstEvents),
                           offsetof(VstEvents, events) + pointers.size() * sizeof(VstEvent*)));
    auto* record = reinterpret_cast<VstEvents*>(memory.data());
    record->numEvents = static_cast<VstInt32>(pointers.size());
    record->reserved = 0;
    std::ranges::copy(pointers, record->events);
    return record;
}
