#include "plain/korvel.h"

#include "filter/iir_filter.h"
#include "korvel/korvel.h"
#include "plain/tone_generator.h"

#include <algorithm>

namespace {

void add_voices(korvel* p_korvel, playing_key* p_key, unsigned len) {
    if (p_key->index < 12 && p_korvel->bass_chords_on < 0.5f)
        return;
    tonegenerator* p_tg = p_korvel->p_organ->p_tonegenerators[0].get();
    const contact& voices =
        p_korvel->p_organ->p_harpmatrixes[0]->p_keys[p_key->index].p_contacts[0];
    const bool whole = len == static_cast<unsigned>(p_key->p_keybed->block_size);
    for (unsigned v = 0; v < voices.nb_voices; ++v) {
        const unsigned osc = voices.oscillators[v];
        const float conductance = voices.conductance[v];
        if (whole && p_key->key_state == 'S') {
            tone_generator_add_sustained_oscillator(p_tg, osc, conductance);
            continue;
        }
        const float* table = nullptr;
        if (p_key->key_state == 'A')
            table = p_key->p_env_attack->p_env_buffer.data() + p_key->phase;
        if (p_key->key_state == 'R')
            table = p_key->p_env_release->p_env_buffer.data() + p_key->phase;
        tone_generator_add_non_sustained_oscillator(p_tg, osc, p_key->frame_index, len, table,
                                                    conductance);
    }
}

void process(korvel* p_korvel, std::span<float> out_r, std::span<float> out_l) {
    organ* p_organ = p_korvel->p_organ;
    tonegenerator* p_tg = p_organ->p_tonegenerators[0].get();
    const auto manual = p_korvel->p_tonegenerator_buffer_organ;
    const auto bass = p_korvel->p_tonegenerator_buffer_bass;
    plain_tone_generator_next(p_tg, manual, 12, 60);
    plain_tone_generator_next(p_tg, bass, 0, 11);
    tonegenerator_reset_sustain(p_tg);

    vibrato_process(p_korvel->p_vibrato.get(), manual, p_korvel->p_post_scanner);
    const auto source = p_korvel->vibrato_on >= 0.5f ? p_korvel->p_post_scanner : manual;
    std::ranges::fill(p_korvel->p_filter, 0.0f);
    for (std::size_t i = 0; i < korvel_nb_stops; ++i)
        if (p_korvel->stops[i] >= 0.5f)
            iir_filter_process(p_organ->p_filters[i].get(), source, p_korvel->p_filter, 1);

    filter* p_contour = p_organ->p_filters[filter_out].get();
    const contour_coeffs c = p_korvel->contour[p_korvel->selected_rate];
    p_contour->b_coeffs[0] = p_contour->b_coeffs[1] = c.b0;
    p_contour->a_coeffs[1] = c.a1;
    iir_filter_process(p_contour, p_korvel->p_filter, p_korvel->p_filter_organ, 0);
    iir_filter_process(p_organ->p_filters[filter_out_bass].get(), bass, p_korvel->p_filter_bass, 0);

    const float manual_gain = p_korvel->volume * 10000.0f;
    const auto bass_gain =
        static_cast<float>(10000.0 * static_cast<double>(p_korvel->bass_volume) * 200.0);
    for (std::size_t i = 0; i < out_r.size(); ++i) {
        const float organ_out = p_korvel->p_filter_organ[i] * manual_gain;
        const float bass_out = p_korvel->p_filter_bass[i] * bass_gain;
        const int mode = p_korvel->sound_output_mode;
        out_r[i] = mode == 2 ? organ_out + bass_out : mode == 0 ? bass_out : organ_out;
        out_l[i] = mode == 2 ? organ_out + bass_out : mode == 0 ? organ_out : bass_out;
    }
    std::ranges::fill(manual, 0.0f);
    std::ranges::fill(bass, 0.0f);
}

} // namespace

organ* plain_korvel_create(const char* name) {
    organ* p_organ = korvel_create(name);
    auto* p_korvel = static_cast<korvel*>(p_organ->p_instrument.get());
    for (const auto& p_keybed : p_organ->p_keybeds)
        p_keybed->steady_callback = {};
    p_organ->p_keybeds[keybed_manual]->keybed_callback = [=](playing_key* p_key, unsigned len) {
        add_voices(p_korvel, p_key, len);
    };
    p_organ->process_callback = [=](organ*, std::span<float> out_r, std::span<float> out_l) {
        process(p_korvel, out_r, out_l);
    };
    return p_organ;
}
