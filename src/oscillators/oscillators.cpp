#include "oscillators/oscillators.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

namespace {

std::size_t rate_index(int sampling_rate) {
    sampling_rate = std::max(sampling_rate, 0);
    const auto nearest = std::min_element(
        tavine_sampling_rates.begin(), tavine_sampling_rates.end(), [=](int left, int right) {
            return std::abs(left - sampling_rate) < std::abs(right - sampling_rate);
        });
    return static_cast<std::size_t>(nearest - tavine_sampling_rates.begin());
}

} // namespace

oscillator oscillator_create_from_spec(int osc_number, int nb_period, const oscillator_spec* spec,
                                       int sampling_freq, int /*squared*/) {
    const double periods_long = nb_period / static_cast<double>(spec->root_freq);
    const auto sample_long = static_cast<int>(periods_long / (1.0 / sampling_freq));
    return {.wav = {.samples = std::vector<float>(static_cast<std::size_t>(sample_long)),
                    .sample_long = sample_long},
            .number = static_cast<unsigned>(osc_number),
            .nb_periods = static_cast<unsigned>(nb_period),
            .root_freq = spec->root_freq,
            .name = {spec->name[0], spec->name[1], spec->name[2], '\0'},
            .sample_rate = static_cast<unsigned>(sampling_freq)};
}

oscillators_bank* oscillators_bank_create_from_specs(const oscillator_spec* specs,
                                                     const tuned_frequency* config, int nb_spec,
                                                     int sampling_freq, const char* name,
                                                     int squared) {
    auto* p_bank = new oscillators_bank{.nb_oscs = nb_spec, .oscs = {}, .name = name};
    p_bank->oscs.reserve(static_cast<std::size_t>(nb_spec));
    for (int i = 0; i < nb_spec; ++i) {
        oscillator_spec tuned = specs[i];
        tuned.root_freq = config[i][0];
        p_bank->oscs.push_back(oscillator_create_from_spec(i, 1, &tuned, sampling_freq, squared));
    }
    return p_bank;
}

void oscillators_bank_free(oscillators_bank* p_bank) { delete p_bank; }

oscillators_bank* korvel_bank_square(int sampling_rate) {
    const std::size_t rate = rate_index(sampling_rate);
    return oscillators_bank_create_from_specs(
        tavine_oscillator_specs.data(), tavine_optimized_oscs_freqs[rate].data(), korvel_nb_oscs,
        oversampling * tavine_sampling_rates[rate], "Korvel", 1);
}
