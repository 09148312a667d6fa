#pragma once
/// The list of events that a host hands over before each block.

#include "vst/interface.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <vector>

class event_list {
public:
    event_list() = default;
    event_list(const event_list&) = delete; // the records point at each other
    event_list& operator=(const event_list&) = delete;

    void clear();
    [[nodiscard]] bool is_empty() const { return pointers_.empty(); }
    [[nodiscard]] std::size_t size() const { return pointers_.size(); }

    /// Adds a channel message, or a SysEx message with its first byte; not an empty one.
    void add(std::span<const std::uint8_t> message, int frame_offset);

    /// Adds a message of up to 3 bytes, whatever they say.
    void add_midi(std::span<const std::uint8_t> message, int frame_offset);

    /// Adds a dump, whose bytes must outlive the list's use.
    void add_sysex(std::span<const std::uint8_t> dump, int frame_offset);

    void add(VstEvent* event); ///< of whatever type; may be null

    /// The list in the interface's form, valid until the next change.
    [[nodiscard]] VstEvents* records();

private:
    std::deque<VstMidiEvent> messages_{};
    std::deque<VstMidiSysexEvent> dumps_{};
    std::vector<VstEvent*> pointers_{};
    std::vector<VstEvents> memory_{}; ///< room for a list with all its pointers
};
