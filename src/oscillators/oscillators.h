#pragma once
/// Oscillators are looped tables of one period, sampled at a multiple of the engine's rate; a bank
/// holds all oscillators of one organ model at one rate. Functions are [setup].

#include "oscillators/tavine.h"

#include <string>
#include <vector>

struct wave {
    std::vector<float> samples;
    int sample_long; ///< samples in the table
};

struct oscillator {
    wave wav;
    unsigned number; ///< index in the bank
    unsigned nb_periods;
    unsigned nb_contact = 0;
    unsigned nb_sustained_contact = 0;
    float root_freq;      ///< Hz that the table was made for; looped, it sounds at or just above
    char name[4];         ///< e.g. "C#2"
    unsigned sample_rate; ///< Hz of the table
};

struct oscillators_bank {
    int nb_oscs;
    std::vector<oscillator> oscs; ///< oscillator i has the number i
    std::string name;
};

/// The tables of a bank hold this many samples a frame of the engine.
constexpr int oversampling = 8;

constexpr int korvel_nb_oscs = 61; ///< "C_2" to "C_7"

/// Returns an oscillator with a silent table of floor((nb_period / root_freq) / (1 /
/// sampling_freq)) samples, its frequency and name as described. `squared` marks a bank whose
/// tables are filled with square waves later, which takes nothing else of the description.
[[nodiscard]] oscillator oscillator_create_from_spec(int osc_number, int nb_period,
                                                     const oscillator_spec* spec, int sampling_freq,
                                                     int squared);

/// Returns a bank of `nb_spec` silent oscillators of one period; `config` has for each the
/// frequency that takes the place of the described one. Free with oscillators_bank_free.
[[nodiscard]] oscillators_bank* oscillators_bank_create_from_specs(const oscillator_spec* specs,
                                                                   const tuned_frequency* config,
                                                                   int nb_spec, int sampling_freq,
                                                                   const char* name, int squared);

void oscillators_bank_free(oscillators_bank* p_bank); ///< null is allowed

/// Returns the silent bank "Korvel" of 61 oscillators for an engine rate; a rate without tuned
/// frequencies gets the bank of the nearest rate that has them.
[[nodiscard]] oscillators_bank* korvel_bank_square(int sampling_rate);
