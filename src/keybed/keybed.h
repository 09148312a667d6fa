#pragma once
/// A keybed is one keyboard: a row of keys on a run of MIDI notes, the list of keys that sound, and
/// a render callback. It turns notes, each stamped with its frame in the coming block, into
/// segments: whenever a key changes state, the key is first rendered up to that frame, and at the
/// block's end every sounding key is rendered up to the end. The keybed makes no sound itself: the
/// callback does, told by the key's fields what the segment is.
///
/// Most blocks are steady: they sustain the keys that the block before sustained throughout. An
/// instrument that knows what it did then spares the walk over the keys.

#include "envelope/envelope.h"
#include "list/list.h"
#include "realtime/closure.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct keybed;
struct key_event; // an instrument's own

constexpr char key_attack = 'A';  ///< the segment runs through the attack table from `phase` on
constexpr char key_sustain = 'S'; ///< full level, no table
constexpr char key_release = 'R'; ///< the segment runs through the release table from `phase` on

struct playing_key {
    unsigned index = 0;      ///< position on the keybed
    unsigned midi_value = 0; ///< MIDI note
    key_event* p_key_event = nullptr;
    indexed_list_elem elem{}; ///< links the key while it sounds
    unsigned is_muted = 0;    ///< 1 while another key of the keybed has priority
    unsigned is_bass_chord = 0;
    std::uint8_t midi_velocity = 0; ///< of the last note-on or note-off
    unsigned intercontact_sample_delay = 0;
    char key_state = key_sustain;
    unsigned frame_index = 0; ///< next frame of the block to render
    unsigned remain = 0;      ///< frames left of the table, or of the block while it sustains
    unsigned phase = 0;       ///< position in the table
    keybed* p_keybed = nullptr;
    unsigned attack_sample_long = 0;
    unsigned release_sample_long = 0;
    envelope* p_env_attack = nullptr; ///< shared, not owned
    envelope* p_env_release = nullptr;
    unsigned manual_index = 0;
};

struct keybed {
    std::string name;
    int nb_keys;
    int midi_key_start;    ///< MIDI note of key 0
    int midi_channel = -1; ///< 1 to 16, or -1 for every channel
    int omni_mode = 1;     ///< 1: notes of every channel are for this keybed
    int sample_rate = 0;
    int block_size = 0;
    std::unique_ptr<indexed_list> p_key_list; ///< the sounding keys in the order of their key-ons
    std::vector<playing_key> p_keys; ///< never resized: the list and callbacks hold addresses
    unsigned global_index = 0;       ///< frames rendered since creation
    closure<void(playing_key*, unsigned)> keybed_callback;
    closure<void(unsigned)> steady_callback{}; ///< takes a steady block of that many frames as a
                                               ///< whole; may be empty
    unsigned steady_frames = 0; ///< the last block's, if every key sustained through it and none
                                ///< has changed since; else 0
    int unmuted_key = -1;       ///< the key that the mute flags were last set for; -1 before any
    std::unique_ptr<envelope> p_env_attack; ///< what the keys use unless they are given others
    std::unique_ptr<envelope> p_env_release;
};

/// Returns a keybed that listens to every channel, with attack and release of 3 ms (without tables
/// until a rate is set) and the callback default_callback. [setup]
[[nodiscard]] keybed* keybed_create(int nb_keys, int midi_key_start, const char* name);

void keybed_free(keybed* p_keybed); ///< null is allowed [setup]

/// Later segments are cut to blocks of that many frames. [audio]
void keybed_set_block_size(keybed* p_keybed, int block_size) noexcept NONBLOCKING;

/// Rebuilds the keys' envelopes; a key in attack or release goes on at the same share of its new
/// table. [setup]
void keybed_set_sampling_rate(keybed* p_keybed, int sampling_rate);

/// Silences every key at once, or one below nb_keys, without release. [audio]
void keybed_reset(keybed* p_keybed) noexcept NONBLOCKING;
void keybed_reset_key(keybed* p_keybed, int key_index) noexcept NONBLOCKING;

/// Give every key another envelope, not owned, while no key sounds. [setup]
void keybed_set_envelope_attack(keybed* p_keybed, envelope* p_env);
void keybed_set_envelope_release(keybed* p_keybed, envelope* p_env);

/// Renders the key from its frame_index up to `max_frame_index`, in up to two segments; a release
/// that ends before takes the key out of the list. Hands the callback lengths that may be 0.
/// [audio]
void keybed_update_key(playing_key* p_key, int max_frame_index) noexcept NONBLOCKING;

/// Key transitions of a key below nb_keys at a frame of the coming block, whose length has been set
/// before its events. Frames outside the block are moved to its edge, a frame before what the key
/// has rendered to that point. [audio]
void keybed_receive_key_on(keybed* p_keybed, int key_index, unsigned char midi_velocity,
                           int frame_index) noexcept NONBLOCKING;
void keybed_receive_key_off(keybed* p_keybed, int key_index, unsigned char midi_velocity,
                            int frame_index) noexcept NONBLOCKING;
void keybed_all_key_off(keybed* p_keybed, int frame_index) noexcept NONBLOCKING;

/// Renders every sounding key to the end of a block of `nframes` and starts the next. [audio]
void keybed_next(keybed* p_keybed, int nframes) noexcept NONBLOCKING;

/// Unmutes the lowest sounding key (one in release counts) and mutes all others; leaves the flags
/// alone while no key sounds. [audio]
void keybed_update_mono_bass(keybed* p_keybed) noexcept NONBLOCKING;

/// Applies a 3-byte note message of the keybed's channel and range; ignores every other. [audio]
void keybed_receive_midi_event(keybed* p_keybed, const char* midi_data,
                               int frame_index) noexcept NONBLOCKING;

/// The callback of a keybed that no instrument has claimed; does nothing. [audio]
void default_callback(playing_key* p_key, unsigned len) noexcept NONBLOCKING;
