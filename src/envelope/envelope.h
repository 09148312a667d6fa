#pragma once
/// An envelope is a table of gains for the start or the end of a note: a curve of a given length,
/// then a stretch that holds the curve's end value. It is rebuilt at every change of rate or
/// length, by the generator that it holds, and only read while sound is made. Functions are
/// [setup].

#include <functional>
#include <string>
#include <vector>

struct envelope {
    std::string name;
    float m_second_long;               ///< length of the curve in ms
    float real_m_second_long;          ///< length of the curve and the hold together in ms
    unsigned sample_long = 0;          ///< length of the curve in frames
    unsigned real_sample_long = 0;     ///< length of the table in frames
    int sampling_rate = 0;             ///< Hz; 0 until set
    std::vector<float> p_env_buffer{}; ///< real_sample_long gains within [0, 1]
    std::function<void(envelope*)> callback_generate; ///< fills the whole table
    void* generator_data = nullptr;                   ///< for generators of other makers
};

/// Returns an envelope without a table, which the first rate brings, and with the generator
/// envelope_generate_linear_up.
[[nodiscard]] envelope* envelope_create(const char* name, float m_second_long,
                                        float real_m_second_long);

void envelope_free(envelope* p_env); ///< null is allowed

/// Each stores its arguments and rebuilds the table: floor(ms * rate / 1000) gains, none at rate 0.
void envelope_set_sampling_rate(envelope* p_env, int sampling_rate);
void envelope_update_second_long(envelope* p_env, float m_second_long, float real_m_second_long);

/// Rebuilds the table from the stored lengths, rate and generator.
void envelope_update_buffer_size(envelope* p_env);

/// Generators. A curve longer than its table is cut where the table ends.
void envelope_generate_linear_up(envelope* p_env);   ///< i / n, hold 1
void envelope_generate_linear_down(envelope* p_env); ///< 1 - i / n, hold 0
void envelope_generate_exp_up(envelope* p_env);      ///< 1 - exp(-10 i / n), hold 1
void envelope_generate_exp_down(envelope* p_env);    ///< 1 - exp(-10 (n - i) / n), hold 0

/// Fills the hold, positions sample_long to real_sample_long - 1.
void envelope_generate_end(envelope* p_env, float value);
