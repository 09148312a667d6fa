#pragma once
/// Tells an instrument where in a song it is: frames, quarter notes, tempo.

#include "midi_file/midi_file.h"
#include "plugin/plugin.h"

class song_clock {
public:
    /// The tempi, by time, outlive it; there is one at least.
    song_clock(std::span<const midi_tempo> tempi, int rate_hz) : tempi_{tempi}, rate_hz_{rate_hz} {}

    /// Before the block that begins at that frame of the song. [audio]
    void tell(plugin& instrument, std::uint64_t frame) noexcept;

private:
    std::span<const midi_tempo> tempi_;
    int rate_hz_;
    std::size_t current_ = 0; // the tempo in force
};
