#include "envelope/envelope.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double max_frames = 1 << 30; ///< positions in a table add up without overflow

unsigned frames(float m_second_long, int sampling_rate) {
    const float product = m_second_long * static_cast<float>(sampling_rate);
    const double nb_frames = static_cast<double>(product) / 1000.0;
    return nb_frames >= 1 ? static_cast<unsigned>(std::min(nb_frames, max_frames)) : 0;
}

/// Fills the curve with `gain` of each position.
template <typename Gain>
void generate_curve(envelope* p_env, Gain gain) {
    const unsigned nb_gains = std::min(p_env->sample_long, p_env->real_sample_long);
    for (unsigned i = 0; i < nb_gains; ++i)
        p_env->p_env_buffer[i] = gain(i);
}

float fraction(unsigned part, unsigned whole) {
    return static_cast<float>(part) / static_cast<float>(whole);
}

/// The charge of a capacitor after ten time constants' share x: 0.99995 at x = 1.
float exp_charge(float x) {
    return static_cast<float>(1.0 - std::exp(-10.0 * static_cast<double>(x)));
}

} // namespace

envelope* envelope_create(const char* name, float m_second_long, float real_m_second_long) {
    return new envelope{.name = name,
                        .m_second_long = m_second_long,
                        .real_m_second_long = real_m_second_long,
                        .callback_generate = envelope_generate_linear_up};
}

void envelope_free(envelope* p_env) { delete p_env; }

void envelope_set_sampling_rate(envelope* p_env, int sampling_rate) {
    p_env->sampling_rate = sampling_rate;
    envelope_update_buffer_size(p_env);
}

void envelope_update_second_long(envelope* p_env, float m_second_long, float real_m_second_long) {
    p_env->m_second_long = m_second_long;
    p_env->real_m_second_long = real_m_second_long;
    envelope_update_buffer_size(p_env);
}

void envelope_update_buffer_size(envelope* p_env) {
    p_env->sample_long = frames(p_env->m_second_long, p_env->sampling_rate);
    p_env->real_sample_long = frames(p_env->real_m_second_long, p_env->sampling_rate);
    p_env->p_env_buffer.assign(p_env->real_sample_long, 0.0f);
    p_env->callback_generate(p_env);
}

void envelope_generate_linear_up(envelope* p_env) {
    const unsigned n = p_env->sample_long;
    generate_curve(p_env, [n](unsigned i) { return fraction(i, n); });
    envelope_generate_end(p_env, 1.0f);
}

void envelope_generate_linear_down(envelope* p_env) {
    const unsigned n = p_env->sample_long;
    generate_curve(p_env, [n](unsigned i) { return 1.0f - fraction(i, n); });
    envelope_generate_end(p_env, 0.0f);
}

void envelope_generate_exp_up(envelope* p_env) {
    const unsigned n = p_env->sample_long;
    generate_curve(p_env, [n](unsigned i) { return exp_charge(fraction(i, n)); });
    envelope_generate_end(p_env, 1.0f);
}

void envelope_generate_exp_down(envelope* p_env) {
    const unsigned n = p_env->sample_long;
    generate_curve(p_env, [n](unsigned i) { return exp_charge(fraction(n - i, n)); });
    envelope_generate_end(p_env, 0.0f);
}

void envelope_generate_end(envelope* p_env, float value) {
    for (unsigned i = p_env->sample_long; i < p_env->real_sample_long; ++i)
        p_env->p_env_buffer[i] = value;
}
