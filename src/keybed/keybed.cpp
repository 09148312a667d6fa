#include "keybed/keybed.h"

#include "midi/midi.h"

#include <algorithm>
#include <set>

namespace {

constexpr float default_m_second_long = 3.0f;
constexpr unsigned char released_by_note_on = 64; ///< velocity of a note-off sent as note-on 0

std::unique_ptr<envelope> default_envelope(const char* name, void (*generate)(envelope*)) {
    std::unique_ptr<envelope> p_env(
        envelope_create(name, default_m_second_long, default_m_second_long));
    p_env->callback_generate = generate;
    return p_env;
}

bool is_sounding(const playing_key& key) {
    return key.p_keybed->p_key_list->active[key.index] != 0;
}

playing_key& key_of(const indexed_list_elem* elem) { return *static_cast<playing_key*>(elem->obj); }

const envelope& current_envelope(const playing_key& key) {
    return key.key_state == key_attack ? *key.p_env_attack : *key.p_env_release;
}

/// The frame at which an event reaches the key: inside the block, not before what it has rendered.
unsigned event_frame(const playing_key& key, int frame_index) {
    const int block_size = std::max(key.p_keybed->block_size, 0);
    const auto frame = static_cast<unsigned>(std::clamp(frame_index, 0, block_size));
    return is_sounding(key) ? std::max(frame, key.frame_index) : frame;
}

void start_segment(playing_key& key, char key_state, unsigned frame, unsigned char velocity) {
    key.p_keybed->steady_frames = 0;
    key.midi_velocity = velocity;
    key.key_state = key_state;
    key.frame_index = frame;
    key.phase = 0;
    key.remain = current_envelope(key).real_sample_long;
}

void sustain_to(playing_key& key, unsigned frame) {
    key.remain = frame - key.frame_index;
    key.p_keybed->keybed_callback(&key, key.remain);
}

/// Renders attack or release up to `frame`. Returns whether the table was used up before.
bool run_table_to(playing_key& key, unsigned frame) {
    const unsigned end = key.frame_index + key.remain;
    const unsigned len = std::min(end, frame) - key.frame_index;
    key.p_keybed->keybed_callback(&key, len);
    if (end < frame) {
        key.key_state = key_sustain;
        key.phase = 0;
        key.frame_index = end;
        key.remain = frame - end;
        return true;
    }
    key.phase += len;
    key.remain -= len;
    key.frame_index = frame;
    return false;
}

} // namespace

keybed* keybed_create(int nb_keys, int midi_key_start, const char* name) {
    nb_keys = std::max(nb_keys, 0);
    auto* p_keybed = new keybed{
        .name = name,
        .nb_keys = nb_keys,
        .midi_key_start = midi_key_start,
        .p_key_list = std::unique_ptr<indexed_list>(create_indexed_list(nb_keys, "KEY")),
        .p_keys = std::vector<playing_key>(static_cast<std::size_t>(nb_keys)),
        .keybed_callback{[](playing_key* p_key, unsigned len) { default_callback(p_key, len); }},
        .p_env_attack = default_envelope("DEFAULT ENV ATTACK", envelope_generate_exp_up),
        .p_env_release = default_envelope("DEFAULT ENV RELEASE", envelope_generate_exp_down)};

    for (int k = 0; k < nb_keys; ++k) {
        playing_key& key = p_keybed->p_keys[static_cast<std::size_t>(k)];
        key.index = static_cast<unsigned>(k);
        key.midi_value = static_cast<unsigned>(midi_key_start + k);
        key.elem.obj = &key;
        key.elem.index = k;
        key.p_keybed = p_keybed;
        key.p_env_attack = p_keybed->p_env_attack.get();
        key.p_env_release = p_keybed->p_env_release.get();
    }
    return p_keybed;
}

void keybed_free(keybed* p_keybed) { delete p_keybed; }

void keybed_set_block_size(keybed* p_keybed, int block_size) noexcept {
    p_keybed->block_size = block_size;
}

void keybed_set_sampling_rate(keybed* p_keybed, int sampling_rate) {
    p_keybed->sample_rate = sampling_rate;
    std::set<envelope*> envelopes;
    for (const playing_key& key : p_keybed->p_keys)
        envelopes.insert({key.p_env_attack, key.p_env_release});
    for (envelope* p_env : envelopes)
        envelope_set_sampling_rate(p_env, sampling_rate);

    for (playing_key& key : p_keybed->p_keys) {
        if (!is_sounding(key) || key.key_state == key_sustain)
            continue;
        const std::uint64_t old_long = key.phase + key.remain;
        const std::uint64_t new_long = current_envelope(key).real_sample_long;
        key.phase = static_cast<unsigned>(old_long ? key.phase * new_long / old_long : new_long);
        key.remain = static_cast<unsigned>(new_long) - key.phase;
    }
}

void keybed_reset(keybed* p_keybed) noexcept {
    indexed_list_clear(p_keybed->p_key_list.get());
    p_keybed->steady_frames = 0;
}

void keybed_reset_key(keybed* p_keybed, int key_index) noexcept {
    remove_from_indexed_list(p_keybed->p_key_list.get(),
                             &p_keybed->p_keys[static_cast<std::size_t>(key_index)].elem);
    p_keybed->steady_frames = 0;
}

void keybed_set_envelope_attack(keybed* p_keybed, envelope* p_env) {
    for (playing_key& key : p_keybed->p_keys)
        key.p_env_attack = p_env;
}

void keybed_set_envelope_release(keybed* p_keybed, envelope* p_env) {
    for (playing_key& key : p_keybed->p_keys)
        key.p_env_release = p_env;
}

void keybed_update_key(playing_key* p_key, int max_frame_index) noexcept {
    playing_key& key = *p_key;
    const unsigned frame =
        std::max(static_cast<unsigned>(std::max(max_frame_index, 0)), key.frame_index);
    switch (key.key_state) {
    case key_attack:
        if (run_table_to(key, frame))
            sustain_to(key, frame);
        break;
    case key_sustain:
        sustain_to(key, frame);
        break;
    case key_release:
        if (run_table_to(key, frame))
            remove_from_indexed_list(key.p_keybed->p_key_list.get(), &key.elem);
        break;
    default:
        break;
    }
}

void keybed_receive_key_on(keybed* p_keybed, int key_index, unsigned char midi_velocity,
                           int frame_index) noexcept {
    playing_key& key = p_keybed->p_keys[static_cast<std::size_t>(key_index)];
    const unsigned frame = event_frame(key, frame_index);
    if (is_sounding(key))
        keybed_update_key(&key, static_cast<int>(frame));
    add_to_indexed_list(p_keybed->p_key_list.get(), &key.elem);
    start_segment(key, key_attack, frame, midi_velocity);
}

void keybed_receive_key_off(keybed* p_keybed, int key_index, unsigned char midi_velocity,
                            int frame_index) noexcept {
    playing_key& key = p_keybed->p_keys[static_cast<std::size_t>(key_index)];
    if (!is_sounding(key))
        return;
    const unsigned frame = event_frame(key, frame_index);
    keybed_update_key(&key, static_cast<int>(frame));
    start_segment(key, key_release, frame, midi_velocity);
}

void keybed_all_key_off(keybed* p_keybed, int frame_index) noexcept {
    if (p_keybed->p_key_list->len == 0)
        return;
    for (const auto* elem = p_keybed->p_key_list->first; elem; elem = elem->next) {
        const playing_key& key = key_of(elem);
        keybed_receive_key_off(p_keybed, static_cast<int>(key.index), key.midi_velocity,
                               frame_index);
    }
}

void keybed_next(keybed* p_keybed, int nframes) noexcept {
    if (nframes <= 0)
        return;
    const auto block = static_cast<unsigned>(nframes);
    p_keybed->global_index += block;
    if (p_keybed->steady_frames == block && p_keybed->steady_callback) {
        p_keybed->steady_callback(block);
        return;
    }
    p_keybed->steady_frames = 0;
    if (p_keybed->p_key_list->len == 0)
        return;
    bool is_steady = true;
    for (const auto* elem = p_keybed->p_key_list->first; elem; elem = elem->next) {
        playing_key& key = key_of(elem);
        if (key.key_state == key_sustain && key.frame_index == 0) { // as most keys mostly do
            key.remain = block;
            p_keybed->keybed_callback(&key, block);
            continue;
        }
        is_steady = false;
        keybed_update_key(&key, nframes);
        if (key.key_state == key_sustain) {
            key.frame_index = 0;
            key.remain = block;
        } else {
            key.frame_index %= block;
        }
    }
    if (is_steady)
        p_keybed->steady_frames = block;
}

void keybed_update_mono_bass(keybed* p_keybed) noexcept {
    const auto& active = p_keybed->p_key_list->active;
    const auto found = std::find(active.begin(), active.end(), 1);
    const int lowest = static_cast<int>(found - active.begin());
    if (found == active.end() || lowest == p_keybed->unmuted_key)
        return;
    p_keybed->unmuted_key = lowest;
    for (playing_key& key : p_keybed->p_keys)
        key.is_muted = key.index != static_cast<unsigned>(lowest);
}

void keybed_receive_midi_event(keybed* p_keybed, const char* midi_data, int frame_index) noexcept {
    const int note = static_cast<signed char>(midi_data[1]);
    const auto velocity = static_cast<unsigned char>(midi_data[2]);

    if (p_keybed->midi_channel != -1 && midi_channel(midi_data) != p_keybed->midi_channel)
        return;
    const int key_index = note - p_keybed->midi_key_start;
    if (key_index < 0 || key_index >= p_keybed->nb_keys)
        return;
    switch (midi_kind(midi_data)) {
    case midi_note_on:
        if (velocity != 0)
            keybed_receive_key_on(p_keybed, key_index, velocity, frame_index);
        else
            keybed_receive_key_off(p_keybed, key_index, released_by_note_on, frame_index);
        break;
    case midi_note_off:
        keybed_receive_key_off(p_keybed, key_index, velocity, frame_index);
        break;
    default:
        break;
    }
}

void default_callback(playing_key*, unsigned) noexcept {}
