#include "korvel/fir_brickwall.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double pi = std::numbers::pi;
constexpr double centre = fir_brickwall_order / 2.0;

constexpr auto rates() {
    std::array<int, nb_fir_brickwall_sampling_rates> list{};
    for (std::size_t i = 0; i < list.size(); ++i)
        list[i] = (i % 2 == 0 ? 22050 : 24000) * (static_cast<int>(i / 2) + 1);
    return list;
}

double windowed_sinc(std::size_t n) {
    const double m = static_cast<double>(n) - centre;
    const double sinc = m == 0 ? 2.0 / 3 : std::sin(2 * pi * m / 3) / (pi * m);
    const double window =
        0.54 - 0.46 * std::cos(2 * pi * static_cast<double>(n) / fir_brickwall_order);
    return window * sinc;
}

/// Normalised to unit gain at 0 Hz.
std::array<float, nb_fir_brickwall_taps> taps() {
    double sum = 0;
    for (std::size_t n = 0; n < nb_fir_brickwall_taps; ++n)
        sum += windowed_sinc(n);
    std::array<float, nb_fir_brickwall_taps> h{};
    for (std::size_t n = 0; n < nb_fir_brickwall_taps; ++n)
        h[n] = static_cast<float>(windowed_sinc(n) / sum);
    return h;
}

const std::array<float, nb_fir_brickwall_taps> coeffs = taps();

} // namespace

const std::array<int, nb_fir_brickwall_sampling_rates> fir_brickwall_sampling_rates = rates();

const std::array<const float*, nb_fir_brickwall_sampling_rates> fir_brickwall_coeffs = [] {
    std::array<const float*, nb_fir_brickwall_sampling_rates> tables{};
    tables.fill(coeffs.data());
    return tables;
}();

const float* fir_brickwall_find(int sampling_rate) {
    const auto& all = fir_brickwall_sampling_rates;
    const auto found = std::find(all.begin(), all.end(), sampling_rate);
    return found == all.end() ? nullptr
                              : fir_brickwall_coeffs[static_cast<std::size_t>(found - all.begin())];
}
