#pragma once
/// What is played.

#include <array>
#include <cstdint>
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

[[nodiscard]] inline std::array<std::uint8_t, 3> message_of(const midi& event) {
    return {static_cast<std::uint8_t>(event.bytes[0]), static_cast<std::uint8_t>(event.bytes[1]),
            static_cast<std::uint8_t>(event.bytes[2])};
}
