#pragma once
/// One track of a MIDI file: a run of events, each a delta time and a message.

#include "midi_file/midi_file.h"

/// Appends the track's events, and its tempi at their ticks, to `song`. `number` counts from 1 and
/// names the track in warnings. Returns the tick where the track ends, which is at least
/// `start_tick`.
std::uint64_t midi_track_read(midi_song& song, std::span<const std::uint8_t> track, int number,
                              std::uint64_t start_tick);
