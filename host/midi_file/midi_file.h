#pragma once
/// A reader of Standard MIDI Files: bytes in, messages with their times out. Damage costs what it
/// touches and gives a warning; memory stays within a small multiple of the bytes given.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// No song comes near this; a larger file is something else.
constexpr std::size_t midi_file_max_bytes = std::size_t{8} << 20;

/// A channel message, complete with its status byte, or a SysEx message from 0xF0 to 0xF7.
struct midi_event {
    std::uint64_t tick;     ///< from the song's start
    double seconds;         ///< from the song's start
    std::uint32_t offset;   ///< of its first byte in midi_song::bytes
    std::uint32_t nb_bytes; ///< 2 or 3, or more for SysEx
};

struct midi_tempo {
    std::uint64_t tick;
    double seconds;
    double quarters; ///< quarter notes from the song's start
    std::uint32_t us_per_quarter;
};

struct midi_song {
    std::vector<midi_event> events{};    ///< by time; simultaneous ones by track, then as written
    std::vector<std::uint8_t> bytes{};   ///< of all events
    std::vector<midi_tempo> tempi{};     ///< by time; the first at tick 0; 120 bpm for SMPTE times
    double seconds = 0;                  ///< end of the longest track
    std::vector<std::string> warnings{}; ///< what was damaged, a sentence each; a bounded number
    std::string error{};                 ///< why nothing could be read; empty otherwise
};

/// Reads formats 0, 1 (tracks merged) and 2 (tracks one after another). Meta events shape the
/// times but are not kept.
[[nodiscard]] midi_song midi_file_read(std::span<const std::uint8_t> file);

[[nodiscard]] std::span<const std::uint8_t> midi_song_message(const midi_song& song,
                                                              const midi_event& event);

/// Adds a warning, or after many of them a last one that there are more.
void midi_song_warn(midi_song& song, std::string sentence);
