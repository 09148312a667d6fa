#pragma once
/// Plays a score on a plug-in and hands on what it sounds like.

#include "console/console.h"
#include "render/score.h"

#include <functional>

constexpr double silence_gain = 3.1622776601683795e-5; ///< -90 dBFS
constexpr double silence_seconds = 0.1;                ///< the tail ends after so much silence

struct render_options {
    int rate_hz = 48000;
    int block_frames = 64;
    double tail_seconds = 5; ///< at most so much sound after the song's end
};

struct render_listener {
    /// Receives interleaved samples, piece after piece.
    std::function<void(std::span<const float> samples)> hear;
    /// Is told before each block how far the song is, from 0 to 1; false ends it there.
    std::function<bool(double done)> goes_on;
};

/// Starts and stops the plug-in, which must not run; the messages pass its console. `tempi` are
/// those of the score's song.
void render_score(plugin& instrument, console& desk, const score& music,
                  std::span<const midi_tempo> tempi, const render_options& options,
                  const render_listener& listener);
