#include "player/player.h"

#include "midi/midi.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

constexpr float lowest_rate = 1000.0f; ///< Hz
constexpr float highest_rate = 1000000.0f;

/// A host may deliver more than it announced: the memory of a full piece is there from the start.
void reserve_pieces(player* p_player) {
    organ_set_block_size(p_player->p_organ.get(), player_max_piece);
}

/// Whatever comes first after the call of panic takes it, a message or a piece.
void take_panic(player* p_player) {
    if (!p_player->panic_asked.exchange(false, std::memory_order_relaxed))
        return;
    p_player->notes.clear();
    organ_panic(p_player->p_organ.get());
}

/// What waits reaches the engine at the frame where it stands.
void empty_queue(player* p_player) {
    for (note_queue& notes = p_player->notes; !notes.empty(); notes.pop())
        organ_receive_midi_event(p_player->p_organ.get(), notes.front().midi_data, 0);
}

/// Nothing is dropped.
void queue_note(player* p_player, const queued_message& message) {
    if (p_player->notes.full())
        empty_queue(p_player);
    p_player->notes.push(message);
}

/// The index of the note's key, or -1 where the keybed has none.
int key_of_note(const keybed& keys, int note) {
    const int index = note - keys.midi_key_start;
    return index < keys.nb_keys ? std::max(index, -1) : -1;
}

/// Hands over the messages of the piece from `start` to `end`. Frames never go back: `frame` is
/// that of the message before.
void send_notes(player* p_player, int& frame, int start, int end, int last_frame) {
    for (note_queue& notes = p_player->notes; !notes.empty(); notes.pop()) {
        frame = std::max(frame, std::min(notes.front().frame, last_frame));
        if (frame >= end)
            break;
        organ_receive_midi_event(p_player->p_organ.get(), notes.front().midi_data, frame - start);
    }
}

} // namespace

player* player_create(organ* p_organ) {
    return new player{.p_control = std::unique_ptr<control>(p_organ->p_control),
                      .p_organ = std::unique_ptr<organ>(p_organ)};
}

void player_free(player* p_player) { delete p_player; }

void player_set_sampling_rate(player* p_player, float sampling_rate) {
    if (!(sampling_rate >= lowest_rate && sampling_rate <= highest_rate))
        return;
    const int rate = static_cast<int>(sampling_rate);
    if (rate == p_player->p_organ->sampling_rate)
        return;
    organ_set_sampling_rate(p_player->p_organ.get(), rate);
    reserve_pieces(p_player);
}

void player_set_block_size(player* p_player, int block_size) {
    if (block_size < 1)
        return;
    reserve_pieces(p_player);
    organ_use_block_size(p_player->p_organ.get(), std::min(block_size, player_max_piece));
}

std::span<const int> player_receive_midi_event(player* p_player, const char* midi_data,
                                               int frame) noexcept {
    take_panic(p_player);
    p_player->has_heard.store(true, std::memory_order_relaxed);
    control_update& update = *p_player->p_control->p_control_update;
    update.nb_parameter_updated = 0;
    if (midi_is_timed(midi_data))
        queue_note(p_player, {{midi_data[0], midi_data[1], midi_data[2]}, frame});
    else
        organ_receive_midi_event(p_player->p_organ.get(), midi_data, 0);

    const std::span moved{update.parameter_index.data(),
                          static_cast<std::size_t>(update.nb_parameter_updated)};
    for (std::size_t i = 0; i < moved.size(); ++i)
        player_set_parameter(p_player, moved[i], update.parameter_value[i]);
    return moved;
}

void player_process(player* p_player, std::span<float> out_r, std::span<float> out_l) noexcept {
    organ* p_organ = p_player->p_organ.get();
    if (p_organ->sampling_rate == 0) {
        std::ranges::fill(out_r, 0.0f);
        std::ranges::fill(out_l, 0.0f);
        return;
    }

    // Pieces of even length: a remainder of a few frames would cost two changes of length a block.
    const std::uint64_t nb_frames = out_r.size();
    const std::uint64_t nb_pieces = (nb_frames + player_max_piece - 1) / player_max_piece;
    const int last_frame = static_cast<int>(nb_frames) - 1;
    int frame = 0;
    std::size_t start = 0;
    for (std::uint64_t i = 1; i <= nb_pieces; ++i) {
        const auto end = static_cast<std::size_t>(i * nb_frames / nb_pieces);
        const std::size_t piece = end - start;
        take_panic(p_player);
        if (!p_player->notes.empty()) { // which the engine must know the piece's length before
            organ_use_block_size(p_organ, static_cast<int>(piece));
            send_notes(p_player, frame, static_cast<int>(start), static_cast<int>(end), last_frame);
        }
        organ_process(p_organ, out_r.subspan(start, piece), out_l.subspan(start, piece));
        start = end;
    }
}

void player_panic(player* p_player) noexcept {
    p_player->panic_asked.store(true, std::memory_order_relaxed);
}

void player_silence(player* p_player) noexcept {
    p_player->panic_asked.store(false, std::memory_order_relaxed);
    p_player->notes.clear();
    organ_silence(p_player->p_organ.get());
}

bool player_take_activity(player* p_player) noexcept {
    return p_player->has_heard.exchange(false, std::memory_order_relaxed);
}

void player_choke(player* p_player, int note) noexcept {
    take_panic(p_player);
    empty_queue(p_player);
    for (const auto& p_keybed : p_player->p_organ->p_keybeds)
        if (const int key = key_of_note(*p_keybed, note); key >= 0)
            keybed_reset_key(p_keybed.get(), key);
}

bool player_has_key(const player* p_player, int note) noexcept {
    for (const auto& p_keybed : p_player->p_organ->p_keybeds)
        if (key_of_note(*p_keybed, note) >= 0)
            return true;
    return false;
}

bool player_sounds(const player* p_player, int note) noexcept {
    for (const auto& p_keybed : p_player->p_organ->p_keybeds) {
        const int key = key_of_note(*p_keybed, note);
        if (key >= 0 && p_keybed->p_key_list->active[static_cast<std::size_t>(key)] != 0)
            return true;
    }
    return false;
}

const parameter* player_find_parameter(const player* p_player, int index) noexcept {
    const auto& parameters = p_player->p_control->parameters;
    const auto position = static_cast<std::size_t>(index);
    return position < parameters.size() ? parameters[position].get() : nullptr;
}

float player_get_parameter(const player* p_player, int index) noexcept {
    return player_find_parameter(p_player, index)
               ? control_get_parameter(p_player->p_control.get(), index)
               : 0.0f;
}

std::optional<float> player_set_parameter(player* p_player, int index, float value) noexcept {
    if (!std::isfinite(value))
        return std::nullopt;
    if (std::signbit(value)) // the sign alone: comparing, -0 and denormals pass
        value = 0.0f;
    if (player_find_parameter(p_player, index)) {
        control* p_control = p_player->p_control.get();
        control_set_parameter(p_control, index, value);
        p_control->p_control_update->last_ui_control_changed_index.store(index,
                                                                         std::memory_order_relaxed);
    }
    return value;
}
