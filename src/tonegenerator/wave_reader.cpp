#include "tonegenerator/wave_reader.h"

#include <cmath>
#include <numeric>

namespace {

std::vector<float> playing_order(const std::vector<float>& table, std::size_t m,
                                 std::size_t nb_samples) {
    const std::size_t step = m % table.size();
    std::vector<float> samples(nb_samples);
    std::size_t position = 0; // (m j) mod L of sample j
    for (float& sample : samples) {
        sample = table[position];
        position += step;
        if (position >= table.size())
            position -= table.size();
    }
    return samples;
}

} // namespace

wave_reader wave_reader_create(const oscillator& osc, int sampling_rate) {
    const auto rate = static_cast<unsigned>(sampling_rate);
    const double ratio = static_cast<double>(osc.sample_rate) / rate;
    if (osc.sample_rate % rate != 0 || osc.wav.samples.empty())
        return {.samples = osc.wav.samples, .loop_long = 0, .ratio = ratio};
    const unsigned m = osc.sample_rate / rate;
    const auto length = static_cast<std::uint32_t>(osc.wav.samples.size());
    const std::uint32_t loop_long = length / std::gcd(m, length);
    return {.samples = playing_order(osc.wav.samples, m, loop_long + wave_reader_chunk - 1),
            .loop_long = loop_long,
            .ratio = ratio};
}

void wave_reader_interpolate(const wave_reader& reader, std::uint32_t phase,
                             wave_scratch& scratch) noexcept {
    if (reader.samples.empty()) {
        scratch.fill(0.0f);
        return;
    }
    const auto length = static_cast<double>(reader.samples.size());
    const double turns = phase * reader.ratio / length;
    double position = (turns - std::trunc(turns)) * length;
    for (float& value : scratch) {
        while (position >= length)
            position -= length;
        const auto k = static_cast<std::size_t>(position);
        const double weight = position - static_cast<double>(k);
        const double left = static_cast<double>(reader.samples[k]);
        const double right =
            static_cast<double>(reader.samples[k + 1 == reader.samples.size() ? 0 : k + 1]);
        value = static_cast<float>(left + weight * (right - left));
        position += reader.ratio;
    }
}
