#pragma once
/// The list of events that a host hands over before each block.

#include "message/message.h"
#include "vst/interface.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <variant>
#include <vector>

class event_list {
public:
    void reserve(std::size_t nb_events); ///< so many can be added without an allocation
    void clear();
    [[nodiscard]] bool is_empty() const { return events_.empty(); }
    [[nodiscard]] std::size_t size() const { return events_.size(); }

    /// Adds a channel message, or a SysEx message with its first byte; not an empty one.
    void add(message_view message, int frame_offset);

    /// Adds a message of up to 3 bytes, whatever they say.
    void add_midi(message_view message, int frame_offset);

    /// Adds a dump, whose bytes must outlive the list's use.
    void add_sysex(message_view dump, int frame_offset);

    void add(VstEvent* event); ///< of whatever type; may be null

    /// Calls hear(message_view, frame) for each message, in the order of their addition.
    template <typename Hear>
    void for_each_message(Hear hear) const;

    /// The list in the interface's form, valid until the next change.
    [[nodiscard]] VstEvents* records();

private:
    std::vector<std::variant<VstMidiEvent, VstMidiSysexEvent, VstEvent*>> events_{};
    std::vector<VstEvents> memory_{}; ///< room for a list with all its pointers
};

template <typename Hear>
void event_list::for_each_message(Hear hear) const {
    const auto bytes = [](const char* data) { return reinterpret_cast<const std::uint8_t*>(data); };
    for (const auto& event : events_)
        if (const auto* midi = std::get_if<VstMidiEvent>(&event)) {
            const std::uint8_t* const data = bytes(midi->midiData);
            hear(message_view{data, message_size(data[0])}, midi->deltaFrames);
        } else if (const auto* dump = std::get_if<VstMidiSysexEvent>(&event)) {
            hear(message_view{bytes(dump->sysexDump), static_cast<std::size_t>(dump->dumpBytes)},
                 dump->deltaFrames);
        }
}
