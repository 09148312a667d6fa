#pragma once
/// What is played, and the lists in which a host hands it over.

#include "vst/interface.h"

#include <array>
#include <cstddef>
#include <deque>
#include <span>
#include <vector>

struct midi {
    long frame; ///< since the start of what is rendered; of a list, since the start of its block
    std::array<int, 3> bytes;
};

using score = std::vector<midi>; ///< in the order of its frames

constexpr int full_velocity = 100;

inline midi note_on(long frame, int note) { return {frame, {0x90, note, full_velocity}}; }
inline midi note_off(long frame, int note) { return {frame, {0x80, note, 0}}; }

/// Channels count from 1.
inline midi controller(long frame, int number, int value, int channel = 1) {
    return {frame, {0xB0 | (channel - 1), number, value}};
}

/// A list of events with room for as many as are added. Not to be copied: it points into itself.
class event_list {
public:
    event_list() = default;
    event_list(const event_list&) = delete;
    event_list& operator=(const event_list&) = delete;

    void add(const midi& event, VstInt32 delta_frames);
    void add_sysex(std::span<char> dump);
    void add(VstEvent* event); ///< of whatever type; may be null

    /// The record, valid until the next event is added.
    [[nodiscard]] VstEvents* record();

private:
    std::deque<VstMidiEvent> messages{};
    std::deque<VstMidiSysexEvent> dumps{};
    std::vector<VstEvent*> pointers{};
    std::vector<std::byte> memory{};
};
