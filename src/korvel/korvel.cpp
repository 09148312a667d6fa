#include "korvel/korvel.h"

#include "filter/fir_filter.h"
#include "filter/iir_design.h"
#include "filter/iir_filter.h"
#include "korvel/controls.h"
#include "korvel/filtered_zelm_oscs.h"
#include "korvel/fir_brickwall.h"
#include "korvel/render.h"

namespace {

constexpr float manual_envelope_ms = 30.0f;
constexpr float vibrato_levels[] = {korvel_vibrato_depth};
constexpr int design_rate = 48000;
constexpr int nb_rates = static_cast<int>(s_rate.size());

void install_callbacks(korvel* p_korvel) {
    organ* p_organ = p_korvel->p_organ;
    p_organ->set_block_size_callback = [=](int block_size) {
        korvel_set_block_size(p_korvel, block_size);
    };
    p_organ->set_sampling_rate_callback = [=](int rate) {
        korvel_set_sampling_rate(p_korvel, rate);
    };
    p_organ->set_output_mode_callback = [=](organ*, int mode) {
        korvel_set_output_mode(p_korvel, mode);
    };
    p_organ->process_callback = [=](organ*, std::span<float> out_r, std::span<float> out_l) {
        korvel_process_callback(p_korvel, out_r, out_l);
    };
    p_organ->silence_callback = [=] { vibrato_clear(p_korvel->p_vibrato.get()); };
    p_organ->rest_callback = [=](unsigned nframes) {
        return korvel_rest_callback(p_korvel, nframes);
    };
}

void add_buffers(korvel* p_korvel) {
    buffers* p_buffers = p_korvel->p_organ->p_buffers.get();
    buffers_add(p_buffers, "p_tonegenerator_buffer_organ", &p_korvel->p_tonegenerator_buffer_organ);
    buffers_add(p_buffers, "p_tonegenerator_buffer_bass", &p_korvel->p_tonegenerator_buffer_bass);
    buffers_add(p_buffers, "p_post_scanner", &p_korvel->p_post_scanner);
    buffers_add(p_buffers, "filter", &p_korvel->p_filter);
    buffers_add(p_buffers, "filter_organ", &p_korvel->p_filter_organ);
    buffers_add(p_buffers, "filter_bass", &p_korvel->p_filter_bass);
    buffers_add(p_buffers, "swell_buffer", &p_korvel->p_swell_buffer);
}

template <auto render, auto render_steady>
std::unique_ptr<keybed> create_keybed(korvel* p_korvel, int nb_keys, const char* name) {
    std::unique_ptr<keybed> p_keybed(keybed_create(nb_keys, korvel_first_note, name));
    p_keybed->keybed_callback = [=](playing_key* p_key, unsigned len) {
        render(p_korvel, p_key, len);
    };
    p_keybed->steady_callback = [=](unsigned len) { render_steady(p_korvel, len); };
    return p_keybed;
}

/// Generators, wiring and keys, in the order that the instrument's random draws come in.
void create_voices(korvel* p_korvel) {
    organ* p_organ = p_korvel->p_organ;
    p_organ->p_tonegenerators[0].reset(tonegenerator_create("ORGAN TG"));
    p_organ->p_keybeds[keybed_manual] =
        create_keybed<render_callback_organ, render_callback_organ_steady>(
            p_korvel, korvel_nb_manual_keys, "ORGAN KEY BED");
    p_organ->p_harpmatrixes[0].reset(harpmatrix_create("KORVEL_MANUAL"));
    harpmatrix_load_ini(p_organ->p_harpmatrixes[0].get(), "../harpmatrix/korvel.ini",
                        p_organ->random);
    p_organ->p_tonegenerators[0]->get_bank = [=](int rate) {
        return korvel_bank_filtered(rate, p_organ->random);
    };
    p_organ->p_keybeds[keybed_bass] =
        create_keybed<render_callback_bass, render_callback_bass_steady>(
            p_korvel, korvel_nb_bass_keys, "BASS KEY BED");
}

void create_vibrato(korvel* p_korvel) {
    p_korvel->p_vibrato.reset(vibrato_create(1, vibrato_levels, "Main Vibrato"));
    vibrato* p_vibrato = p_korvel->p_vibrato.get();
    dsp_stack_add(p_korvel->p_organ->p_dsp_stack.get(), vibrato_set_sampling_rate,
                  vibrato_set_block_size, p_vibrato, p_vibrato->name.c_str());
}

filter* create_iir(organ* p_organ, korvel_filter index, const char* name, int order,
                   unsigned nb_cascaded_stages) {
    filter* p_filter = iir_filter_create(name, order, nb_cascaded_stages, nb_rates, s_rate.data());
    filter_set_sampling_rate(p_filter, design_rate);
    p_organ->p_filters[index].reset(p_filter);
    return p_filter;
}

void create_filters(korvel* p_korvel) {
    organ* p_organ = p_korvel->p_organ;
    filter* p_filter = create_iir(p_organ, filter_flute, "Korvel Flute filter", 2, 0);
    iir_filter_design_multi_rate(p_filter, 780.0f, 5.0f, 0);

    p_filter = create_iir(p_organ, filter_bright, "Korvel Bright filter", 2, 0);
    iir_filter_design_shelf_multi_rate(p_filter, 20.0f, 0.01f, 30.0f, 1);
    iir_filter_set_gain(p_filter, 0.1f);

    p_filter = create_iir(p_organ, filter_brass, "Korvel Brass IIR Filter", 1, 0);
    iir_filter_set_coeff_first_order_multi_rate(p_filter, 240.0f, 1);

    p_filter = create_iir(p_organ, filter_mellow, "Korvel Mellow IIR Filter", 1, 0);
    iir_filter_set_coeff_first_order_multi_rate(p_filter, 200.0f, 0);
    iir_filter_set_gain(p_filter, 1.4f);

    create_iir(p_organ, filter_out, "out_filter", 1, 1);
    contour_filter_set(p_korvel, 0.0f); // the blocks bring it the published design

    p_filter = create_iir(p_organ, filter_out_bass, "out_bass_filter", 1, 1);
    iir_filter_set_coeff_rc_first_order_multi_rate(p_filter, 100000.0f, 4.7e-8f, 0);

    p_filter = fir_filter_create("Brickwall fs/2", fir_brickwall_order, nb_rates, s_rate.data());
    filter_set_sampling_rate(p_filter, design_rate);
    p_organ->p_filters[filter_brickwall].reset(p_filter);

    for (const auto& p_designed : std::span(p_organ->p_filters).first(filter_brickwall))
        filter_dump(p_designed.get());
    organ_add_filters_to_dsp_stack(p_organ);
}

/// Returns the named parameter, or null where the configuration text has none.
parameter* find_parameter(control* p_control, const char* name) {
    const int index = control_find_parameter(p_control, name);
    return index < 0 ? nullptr : p_control->parameters[static_cast<std::size_t>(index)].get();
}

void bind_value(control* p_control, const char* name, std::atomic<float>* value) {
    if (parameter* p_param = find_parameter(p_control, name))
        p_param->value = value;
}

void bind_parameters(korvel* p_korvel) {
    control* p_control = p_korvel->p_organ->p_control;
    bind_value(p_control, "Volume", &p_korvel->volume);
    bind_value(p_control, "Bass", &p_korvel->bass_volume);
    bind_value(p_control, "Flute", &p_korvel->stops[filter_flute]);
    bind_value(p_control, "Bright", &p_korvel->stops[filter_bright]);
    bind_value(p_control, "Brass", &p_korvel->stops[filter_brass]);
    bind_value(p_control, "Mellow", &p_korvel->stops[filter_mellow]);
    bind_value(p_control, "BassChords", &p_korvel->bass_chords_on);
    bind_value(p_control, "Vibrato", &p_korvel->vibrato_on);
    if (parameter* p_param = find_parameter(p_control, "Contour")) {
        p_param->get_parameter_value = [=] { return contour_filter_get(p_korvel); };
        p_param->set_parameter_value = [=](float value) { contour_filter_set(p_korvel, value); };
    }
    if (parameter* p_param = find_parameter(p_control, "Split")) {
        p_param->get_parameter_value = [=] { return split_get_value(p_korvel); };
        p_param->set_parameter_value = [=](float value) { split_set_value(p_korvel, value); };
        p_param->get_parameter_display = [=] { return split_get_display(p_korvel); };
    }
}

void set_manual_envelopes(const organ* p_organ) {
    const keybed* p_manual = p_organ->p_keybeds[keybed_manual].get();
    for (envelope* p_env : {p_manual->p_env_attack.get(), p_manual->p_env_release.get()})
        envelope_update_second_long(p_env, manual_envelope_ms, manual_envelope_ms);
}

} // namespace

organ* korvel_create(const char* name, std::optional<std::uint32_t> seed) {
    const auto p_korvel = std::make_shared<korvel>();
    organ* p_organ = organ_create(name, korvel_nb_keybeds, 1, 1, korvel_nb_filters, seed);
    p_korvel->p_organ = p_organ;
    p_organ->p_instrument = p_korvel;
    p_organ->p_control = control_create("Tindelwax");
    control_load_ini(p_organ->p_control, "../control/confs/korvel.ini");

    install_callbacks(p_korvel.get());
    add_buffers(p_korvel.get());
    create_voices(p_korvel.get());
    create_vibrato(p_korvel.get());
    create_filters(p_korvel.get());
    bind_parameters(p_korvel.get());
    set_manual_envelopes(p_organ);
    organ_set_default_values(p_organ);
    return p_organ;
}

void korvel_free(organ* p_organ) { organ_free(p_organ); }
