#include "plain/tone_generator.h"

#include <algorithm>
#include <cmath>

namespace {

/// Where the list holds the oscillator; `list.size()` if it does not.
std::size_t find(std::span<const int> list, unsigned osc) {
    return static_cast<std::size_t>(std::ranges::find(list, static_cast<int>(osc)) - list.begin());
}

std::span<const int> used(const std::vector<int>& list, int nb_used) {
    return std::span(list).first(static_cast<std::size_t>(nb_used));
}

} // namespace

plain_wave_reader::plain_wave_reader(const oscillator& osc, int sampling_rate, std::uint32_t phase)
    : table(osc.wav.samples),
      table_rate(osc.sample_rate),
      cycle(static_cast<double>(table.size()) / table_rate),
      frame(1.0 / sampling_rate) {
    const double cycles = phase * frame / cycle;
    time = (cycles - std::trunc(cycles)) * cycle;
}

double plain_wave_reader::next() {
    double position = time * table_rate;
    if (position >= static_cast<double>(table.size()))
        position = 0; // by rounding
    const auto k = static_cast<std::size_t>(position);
    const double weight = position - static_cast<double>(k);
    const auto left = static_cast<double>(table[k]);
    const auto right = static_cast<double>(table[(k + 1) % table.size()]);
    time += frame;
    while (time >= cycle)
        time -= cycle;
    return left + weight * (right - left);
}

void plain_tone_generator_next(const tonegenerator* p_tg, std::span<float> dest, unsigned osc_start,
                               unsigned osc_end) {
    const auto sustained = used(p_tg->sustained_oscillators, p_tg->nb_sustained_oscs);
    const auto with_curve = used(p_tg->non_sustained_oscillators, p_tg->nb_non_sustained_oscs);
    for (unsigned osc = osc_start; osc <= osc_end; ++osc) {
        const std::size_t position = find(sustained, osc);
        const bool is_sustained = position < sustained.size();
        if (!is_sustained && find(with_curve, osc) == with_curve.size())
            continue;
        const float conductance =
            is_sustained ? p_tg->sustained_oscillators_conductance[position] : 0.0f;
        plain_wave_reader reader(p_tg->oscs_bank->oscs[osc], p_tg->sample_rate,
                                 p_tg->global_phase_index);
        const std::span<const float> curve = p_tg->non_sustained_oscillators_conductance[osc];
        const whole_curves& whole = p_tg->whole[osc];
        for (std::size_t i = 0; i < dest.size(); ++i) {
            float gain = curve[i];
            for (std::size_t k = 0; k < whole.nb_curves; ++k)
                gain += whole.curves[k].table[i] * whole.curves[k].conductance;
            dest[i] += static_cast<float>(reader.next()) * (gain + conductance);
        }
    }
}

void plain_tonegenerator_process(const tonegenerator* p_tg, unsigned oscillator,
                                 std::span<float> dest, unsigned start_index, unsigned nframes,
                                 const float* p_env, float gain) {
    plain_wave_reader reader(p_tg->oscs_bank->oscs[oscillator], p_tg->sample_rate,
                             p_tg->global_phase_index + start_index);
    for (unsigned i = 0; i < nframes; ++i) {
        const auto value = static_cast<float>(reader.next());
        dest[start_index + i] += (p_env ? value * p_env[i] : value) * gain;
    }
}
