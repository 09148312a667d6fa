#pragma once
/// The instrument's audio. The render callbacks, which the keybeds call for every segment of a
/// sounding key, tell the tone generator what sounds; the process callback then takes the sums of
/// manual and bass through the signal chain:
///
///   manual  oscillators 12 to 60 - vibrato (or past it) - the stops, summed - contour - volume
///   bass    oscillators 0 to 11 - output filter - volume
///
/// Manual key k sounds contact 0 of key k of the wiring, bass key k the first voice of contact 1.

#include "korvel/korvel.h"
#include "realtime/nonblocking.h"

/// Adds a manual key's oscillators for a segment. With bass chords off the lowest octave only plays
/// the bass. [audio]
void render_callback_organ(korvel* p_korvel, playing_key* p_key, unsigned len) noexcept NONBLOCKING;

/// Adds or renders a bass key's oscillator for a segment, at full level in every state, if it is
/// the lowest that sounds. [audio]
void render_callback_bass(korvel* p_korvel, playing_key* p_key, unsigned len) noexcept NONBLOCKING;

/// The same for all keys that sustain from the block before through one of `len` frames. [audio]
void render_callback_organ_steady(korvel* p_korvel, unsigned len) noexcept NONBLOCKING;
void render_callback_bass_steady(korvel* p_korvel, unsigned len) noexcept NONBLOCKING;

/// Renders a block into both outputs. [audio]
void korvel_process_callback(korvel* p_korvel, std::span<float> out_r,
                             std::span<float> out_l) noexcept NONBLOCKING;

/// Goes on by a block at rest, or returns false where a stop has moved: its filter stood still, and
/// may ring on. [audio]
bool korvel_rest_callback(korvel* p_korvel, unsigned nframes) noexcept NONBLOCKING;

void korvel_set_block_size(korvel* p_korvel, int block_size); ///< all buffers follow by themselves

/// Follows the rate with the brick-wall taps, the vibrato's depth and the contour set. [setup]
void korvel_set_sampling_rate(korvel* p_korvel, int sampling_rate);

/// Routes the outputs by a korvel_output_mode; any other number silences them. [any]
void korvel_set_output_mode(korvel* p_korvel, int mode) noexcept NONBLOCKING;
