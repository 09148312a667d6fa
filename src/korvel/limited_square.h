#pragma once
/// The square waves of a bank's oscillators, one behind the other, after the brick-wall filter. The
/// filter's input has two values, so its output is the input itself but for the taps' length after
/// each step: there it lacks the step times the taps that the step has not reached yet. [setup]

#include "korvel/fir_brickwall.h"

#include <array>
#include <span>
#include <vector>

class limited_square {
public:
    /// `taps` are nb_fir_brickwall_taps weights; the delay line starts with zeros.
    limited_square(const float* taps, int rate);

    /// Appends sin(2 pi frequency i / rate + start_phase) > 0 ? 0.5 : -0.5, i < samples.size(), to
    /// what the filter has seen, and writes its output. At least as many samples as taps.
    void render(double frequency, double start_phase, std::span<float> samples);

private:
    using tail = std::array<float, nb_fir_brickwall_taps - 1>;

    void step_to(float new_level, std::size_t i);

    double table_rate; ///< Hz
    float level = 0;   ///< of the input
    float unit_gain;   ///< the sum of all taps
    tail unreached;    ///< after m frames: the sum of the taps behind m
    tail carried{};    ///< what the next samples lack of steps before them
    std::vector<float> lacking{};
};
