#include "korvel/render.h"

#include "filter/iir_filter.h"
#include "filter/iir_lanes.h"
#include "korvel/filtered_zelm_oscs.h"
#include "korvel/fir_brickwall.h"

#include <algorithm>

namespace {

constexpr unsigned first_manual_osc = 12;
constexpr unsigned last_manual_osc = 60;
constexpr unsigned last_bass_osc = 11;
constexpr double output_gain = 10000.0;
constexpr double bass_output_gain = 200.0;
// States below that are heard 600 dB below full scale at most, with the volumes up to 1.
constexpr float inaudible_stop = 1e-35f;
constexpr float inaudible_output = 1e-37f;

bool is_on(const std::atomic<float>& value) {
    return value.load(std::memory_order_relaxed) >= 0.5f;
}

tonegenerator* tone_generator(const korvel* p_korvel) {
    return p_korvel->p_organ->p_tonegenerators[0].get();
}

const contact* wired_contact(const korvel* p_korvel, const playing_key* p_key, unsigned number) {
    return harpmatrix_find_contact(p_korvel->p_organ->p_harpmatrixes[0].get(), p_key->index,
                                   number);
}

bool is_whole_block(const playing_key* p_key, unsigned len) {
    return len == static_cast<unsigned>(p_key->p_keybed->block_size);
}

/// The table that the key runs through from its phase on; empty while it sustains.
std::span<const float> segment_table(const playing_key* p_key) {
    if (p_key->key_state == key_sustain)
        return {};
    const envelope* p_env =
        p_key->key_state == key_attack ? p_key->p_env_attack : p_key->p_env_release;
    const std::span<const float> table(p_env->p_env_buffer);
    return table.subspan(std::min<std::size_t>(p_key->phase, table.size()));
}

void select_contour(korvel* p_korvel) {
    const contour_coeffs c =
        p_korvel->contour[p_korvel->selected_rate].load(std::memory_order_relaxed);
    filter* p_filter = p_korvel->p_organ->p_filters[filter_out].get();
    p_filter->b_coeffs[0] = p_filter->b_coeffs[1] = c.b0;
    p_filter->a_coeffs[1] = c.a1;
}

/// A key that is down may be silent now and sound once a switch moves.
bool has_keys(const organ* p_organ) {
    return std::ranges::any_of(p_organ->p_keybeds,
                               [](const auto& p_keybed) { return p_keybed->p_key_list->len > 0; });
}

/// Bit k stands for key k, if the manual sounds it: the lowest octave only with bass chords on.
std::uint64_t audible_keys(const korvel* p_korvel) {
    constexpr std::uint64_t bass_keys = (std::uint64_t{1} << korvel_nb_bass_keys) - 1;
    return is_on(p_korvel->bass_chords_on) ? ~std::uint64_t{0} : ~bass_keys;
}

/// Bit i stands for stop i, if it is on.
unsigned stops_on(const korvel* p_korvel) {
    unsigned stops = 0;
    for (std::size_t i = 0; i < korvel_nb_stops; ++i)
        stops |= static_cast<unsigned>(is_on(p_korvel->stops[i])) << i;
    return stops;
}

/// The stops, the contour of their sum, and the bass's output filter. A stop that is off is left
/// out, and its state stands still.
void filter_voices(korvel* p_korvel, unsigned stops, std::span<const float> source) {
    const auto& filters = p_korvel->p_organ->p_filters;
    std::array<filter*, korvel_nb_stops> enabled;
    std::size_t nb_enabled = 0;
    for (std::size_t i = 0; i < korvel_nb_stops; ++i)
        if (stops >> i & 1u)
            enabled[nb_enabled++] = filters[i].get();
    select_contour(p_korvel);
    iir_filters_process(std::span(enabled).first(nb_enabled), source, p_korvel->p_filter,
                        {filters[filter_out].get(), p_korvel->p_filter, p_korvel->p_filter_organ},
                        {filters[filter_out_bass].get(), p_korvel->p_tonegenerator_buffer_bass,
                         p_korvel->p_filter_bass});
}

/// After a block of silence: whether the filters that are in use have come to rest as well.
bool settle_filters(const korvel* p_korvel, unsigned stops) {
    const auto& filters = p_korvel->p_organ->p_filters;
    for (std::size_t i = 0; i < korvel_nb_stops; ++i)
        if (stops >> i & 1u && !iir_filter_settle(filters[i].get(), inaudible_stop))
            return false;
    return iir_filter_settle(filters[filter_out].get(), inaudible_output)
           && iir_filter_settle(filters[filter_out_bass].get(), inaudible_output);
}

void scale(std::span<const float> src, float gain, std::span<float> dest) {
    for (std::size_t i = 0; i < dest.size(); ++i)
        dest[i] = src[i] * gain;
}

void write_outputs(const korvel* p_korvel, std::span<float> out_r, std::span<float> out_l) {
    const std::span<const float> manual = p_korvel->p_filter_organ;
    const std::span<const float> bass = p_korvel->p_filter_bass;
    const auto gain = [](const std::atomic<float>& level, double unit) {
        return static_cast<float>(static_cast<double>(level.load(std::memory_order_relaxed))
                                  * output_gain * unit);
    };
    const float manual_gain = gain(p_korvel->volume, 1.0);
    const float bass_gain = gain(p_korvel->bass_volume, bass_output_gain);

    switch (p_korvel->sound_output_mode.load(std::memory_order_relaxed)) {
    case output_bass_right:
        scale(manual, manual_gain, out_l);
        scale(bass, bass_gain, out_r);
        break;
    case output_bass_left:
        scale(manual, manual_gain, out_r);
        scale(bass, bass_gain, out_l);
        break;
    case output_mixed:
        for (std::size_t i = 0; i < out_l.size(); ++i)
            out_l[i] = manual[i] * manual_gain + bass[i] * bass_gain;
        std::ranges::copy(out_l, out_r.begin());
        break;
    default: // a host's buffers hold anything: silence, not that
        std::ranges::fill(out_r, 0.0f);
        std::ranges::fill(out_l, 0.0f);
        break;
    }
}

} // namespace

void render_callback_organ(korvel* p_korvel, playing_key* p_key, unsigned len) noexcept {
    if (p_key->key_state == key_sustain && is_whole_block(p_key, len)) {
        held_keys_add(p_korvel->held, p_key->index);
        return;
    }
    if (!(audible_keys(p_korvel) >> p_key->index & 1u))
        return;
    const contact* p_contact = wired_contact(p_korvel, p_key, 0);
    if (!p_contact)
        return;
    const std::span<const float> table = segment_table(p_key);
    const unsigned nframes =
        p_key->key_state == key_sustain ? len : std::min(len, static_cast<unsigned>(table.size()));
    for (unsigned v = 0; v < p_contact->nb_voices; ++v)
        tone_generator_add_non_sustained_oscillator(
            tone_generator(p_korvel), p_contact->oscillators[v], p_key->frame_index, nframes,
            p_key->key_state == key_sustain ? nullptr : table.data(), p_contact->conductance[v]);
}

void render_callback_organ_steady(korvel* p_korvel, unsigned) noexcept {
    held_keys_stay(p_korvel->held);
}

void render_callback_bass(korvel* p_korvel, playing_key* p_key, unsigned len) noexcept {
    keybed_update_mono_bass(p_key->p_keybed);
    if (p_key->is_muted)
        return;
    const contact* p_contact = wired_contact(p_korvel, p_key, 1);
    if (!p_contact || p_contact->nb_voices == 0)
        return;
    const unsigned osc = p_contact->oscillators[0];
    const float conductance = p_contact->conductance[0];
    if (is_whole_block(p_key, len)) {
        tone_generator_add_sustained_oscillator(tone_generator(p_korvel), osc, conductance);
        return;
    }
    p_korvel->bass_has_segment = true;
    tonegenerator_process(tone_generator(p_korvel), osc, p_korvel->p_tonegenerator_buffer_bass,
                          p_key->frame_index, len, nullptr, conductance);
}

void render_callback_bass_steady(korvel* p_korvel, unsigned len) noexcept {
    keybed* p_keybed = p_korvel->p_organ->p_keybeds[keybed_bass].get();
    render_callback_bass(p_korvel,
                         &p_keybed->p_keys[static_cast<std::size_t>(p_keybed->unmuted_key)], len);
}

void korvel_process_callback(korvel* p_korvel, std::span<float> out_r,
                             std::span<float> out_l) noexcept {
    organ* p_organ = p_korvel->p_organ;
    tonegenerator* p_tg = tone_generator(p_korvel);
    const std::span<float> manual = p_korvel->p_tonegenerator_buffer_organ;
    const std::span<float> bass = p_korvel->p_tonegenerator_buffer_bass;

    held_keys_register(p_korvel->held, audible_keys(p_korvel), p_organ->p_harpmatrixes[0].get(),
                       p_tg);
    const bool manual_sounds = tone_generator_next(p_tg, manual, first_manual_osc, last_manual_osc);
    const bool bass_sounds =
        tone_generator_next(p_tg, bass, 0, last_bass_osc) || p_korvel->bass_has_segment;
    p_korvel->bass_has_segment = false;
    tonegenerator_reset_sustain(p_tg);

    vibrato* p_vibrato = p_korvel->p_vibrato.get();
    const unsigned stops = stops_on(p_korvel);
    const bool is_silent =
        !manual_sounds && !bass_sounds && vibrato_is_empty(p_vibrato) && !has_keys(p_organ);
    if (manual_sounds)
        vibrato_process(p_vibrato, manual, p_korvel->p_post_scanner);
    else
        vibrato_process_silence(p_vibrato, p_korvel->p_post_scanner);
    filter_voices(p_korvel, stops, is_on(p_korvel->vibrato_on) ? p_korvel->p_post_scanner : manual);
    write_outputs(p_korvel, out_r, out_l);

    std::ranges::fill(manual, 0.0f);
    std::ranges::fill(bass, 0.0f);
    p_korvel->resting_stops = stops;
    p_organ->is_resting = is_silent && settle_filters(p_korvel, stops);
}

bool korvel_rest_callback(korvel* p_korvel, unsigned nframes) noexcept {
    if (stops_on(p_korvel) != p_korvel->resting_stops)
        return false;
    vibrato_skip(p_korvel->p_vibrato.get(), nframes);
    return true;
}

void korvel_set_block_size(korvel*, int) {}

void korvel_set_sampling_rate(korvel* p_korvel, int sampling_rate) {
    p_korvel->held.registered = 0; // the tone generator holds nothing now
    const float* taps = fir_brickwall_find(sampling_rate);
    filter_set_b_coeffs(p_korvel->p_organ->p_filters[filter_brickwall].get(),
                        taps ? taps : fir_brickwall_coeffs[0]);

    const auto supported = std::find(s_rate.begin(), s_rate.end(), sampling_rate);
    const bool is_supported = supported != s_rate.end();
    if (is_supported)
        p_korvel->selected_rate = static_cast<std::size_t>(supported - s_rate.begin());
    const int times = is_supported ? sampling_rate / korvel_bank_rate(sampling_rate) : 1;
    vibrato_set_depth(p_korvel->p_vibrato.get(), 0,
                      korvel_vibrato_depth * static_cast<float>(times));
}

void korvel_set_output_mode(korvel* p_korvel, int mode) noexcept {
    p_korvel->sound_output_mode.store(mode, std::memory_order_relaxed);
}
