#include "plugin/event_list.h"

#include <algorithm>

namespace {

/// The list's records end in an array of pointers.
std::size_t nb_records(std::size_t nb_events) {
    const std::size_t nb_bytes = offsetof(VstEvents, events) + nb_events * sizeof(VstEvent*);
    return nb_bytes / sizeof(VstEvents) + 1;
}

struct as_event {
    template <typename Record>
    VstEvent* operator()(Record& record) const {
        return reinterpret_cast<VstEvent*>(&record);
    }
    VstEvent* operator()(VstEvent* p_event) const { return p_event; }
};

} // namespace

void event_list::reserve(std::size_t nb_events) {
    events_.reserve(nb_events);
    memory_.reserve(nb_records(nb_events));
}

void event_list::clear() { events_.clear(); }

void event_list::add(message_view message, int frame_offset) {
    if (message_kind_of(message) == message_sysex)
        add_sysex(message, frame_offset);
    else
        add_midi(message, frame_offset);
}

void event_list::add_midi(message_view message, int frame_offset) {
    VstMidiEvent event{};
    event.type = kVstMidiType;
    event.byteSize = sizeof event;
    event.deltaFrames = frame_offset;
    std::copy_n(message.begin(), std::min(message.size(), std::size_t{3}), event.midiData);
    events_.emplace_back(event);
}

void event_list::add_sysex(message_view dump, int frame_offset) {
    VstMidiSysexEvent event{};
    event.type = kVstSysExType;
    event.byteSize = sizeof event;
    event.deltaFrames = frame_offset;
    event.dumpBytes = static_cast<VstInt32>(dump.size());
    // The interface has no const here; a dump is read, never written.
    event.sysexDump = const_cast<char*>(reinterpret_cast<const char*>(dump.data()));
    events_.emplace_back(event);
}

void event_list::add(VstEvent* event) { events_.emplace_back(event); }

VstEvents* event_list::records() {
    memory_.resize(nb_records(events_.size()));
    VstEvents& list = memory_.front();
    list = {.numEvents = static_cast<VstInt32>(events_.size()), .reserved = 0, .events = {}};
    VstEvent** p_next = &list.events[0];
    for (auto& event : events_)
        *p_next++ = std::visit(as_event{}, event);
    return &list;
}
