#pragma once
/// The player feeds an instrument's engine for whatever plug-in format asks it to sound: it takes
/// messages as they come and blocks as they are asked for, and hands the engine pieces.
///
/// The engine is fed in pieces of at most 64 frames, whatever a host announces or delivers: the
/// gain curves stay in the first-level cache, what happens at a block's edge is heard within 1.5
/// ms, and no length that a host asks for can allocate. Notes wait in a queue until their block is
/// asked for and its length is known; everything else acts as it comes.

#include "control/control.h"
#include "organ/organ.h"
#include "player/note_queue.h"
#include "realtime/nonblocking.h"

#include <atomic>
#include <memory>
#include <optional>
#include <span>

constexpr int player_max_piece = 64; ///< frames

struct player {
    std::unique_ptr<control> p_control; ///< the engine's registry, which outlives it
    std::unique_ptr<organ> p_organ;
    note_queue notes{};
    std::atomic<bool> panic_asked = false;
    std::atomic<bool> has_heard = false; ///< a message, since somebody asked
};

/// Takes the engine and its registry into its ownership. [setup]
[[nodiscard]] player* player_create(organ* p_organ);

void player_free(player* p_player); ///< null is allowed [setup]

/// Sets the rate, truncated to whole Hz. The rate that is set already changes nothing, keys that
/// sound included: hosts repeat it before they play. So does one that is not within 1 kHz to 1 MHz.
/// [setup]
void player_set_sampling_rate(player* p_player, float sampling_rate);

/// Blocks longer or shorter than announced are played as well; lengths below 1 are ignored. [setup]
void player_set_block_size(player* p_player, int block_size);

/// Takes a 3-byte channel message for the coming block. One that has its place in time waits with
/// its frame, as the host gave it: block and order move it when the block is played. Any other acts
/// at once. Returns the indices of the parameters that it moved, for whoever shows them; they stand
/// until the next message. [audio]
std::span<const int> player_receive_midi_event(player* p_player, const char* midi_data,
                                               int frame) noexcept NONBLOCKING;

/// Plays a block, both outputs of one length, with the messages that came for it. Silence before a
/// rate is set, while the messages wait; nothing for 0 frames. [audio]
void player_process(player* p_player, std::span<float> out_r,
                    std::span<float> out_l) noexcept NONBLOCKING;

/// Silences what was played so far; whatever comes after the call sounds. [any]
void player_panic(player* p_player) noexcept NONBLOCKING;

/// Silences what was played so far, and what waits, and what rings on. [audio]
void player_silence(player* p_player) noexcept NONBLOCKING;

/// Whether messages have come since the last time. [any]
bool player_take_activity(player* p_player) noexcept NONBLOCKING;

/// Silences a MIDI note at once, on every keybed, after whatever waited in the queue. [audio]
void player_choke(player* p_player, int note) noexcept NONBLOCKING;

/// Whether the MIDI note has a key on any keybed, and whether one sounds, its release included.
/// [audio]
[[nodiscard]] bool player_has_key(const player* p_player, int note) noexcept NONBLOCKING;
[[nodiscard]] bool player_sounds(const player* p_player, int note) noexcept NONBLOCKING;

/// Returns the parameter of that index, or null where the registry has none. [any]
[[nodiscard]] const parameter* player_find_parameter(const player* p_player,
                                                     int index) noexcept NONBLOCKING;

/// Returns the parameter's value, 0 where the registry has none of that index. [any]
[[nodiscard]] float player_get_parameter(const player* p_player, int index) noexcept NONBLOCKING;

/// Sets a parameter and makes it the one that learns the next controller. Another index changes
/// nothing. Returns what the value counts as, whatever the index: +0 for all below zero; nothing
/// for what is not finite, which leaves a parameter as it was. [any]
std::optional<float> player_set_parameter(player* p_player, int index,
                                          float value) noexcept NONBLOCKING;
