#include "probe/signal.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double turn = 2 * std::numbers::pi;

} // namespace

double to_db(double ratio) noexcept { return ratio > 0 ? 20 * std::log10(ratio) : equal_db; }

double peak(signal_span signal) noexcept {
    double largest = 0;
    for (const float sample : signal)
        largest = std::max(largest, std::fabs(static_cast<double>(sample)));
    return largest;
}

std::size_t first_sound(signal_span signal) noexcept {
    return static_cast<std::size_t>(
        std::ranges::find_if(signal, [](float sample) { return sample != 0.0f; }) - signal.begin());
}

bool is_finite(signal_span signal) noexcept {
    return std::ranges::all_of(signal, [](float sample) { return std::isfinite(sample); });
}

std::size_t worst_index(signal_span got, signal_span wanted) noexcept {
    std::size_t worst = 0;
    double largest = -1;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        const double difference =
            std::fabs(static_cast<double>(got[i]) - static_cast<double>(wanted[i]));
        if (!(difference <= largest)) { // not a number is the worst
            largest = std::isnan(difference) ? HUGE_VAL : difference;
            worst = i;
        }
    }
    return worst;
}

double difference_db(signal_span got, signal_span wanted) noexcept {
    const std::size_t worst = worst_index(got, wanted);
    const double difference =
        std::fabs(static_cast<double>(got[worst]) - static_cast<double>(wanted[worst]));
    return std::isnan(difference) ? HUGE_VAL : to_db(difference / peak(wanted));
}

std::complex<double> partial(signal_span signal, double rate, double hz) noexcept {
    const auto nb_samples = static_cast<double>(signal.size());
    const std::complex<double> step = std::polar(1.0, -turn * hz / rate);
    const std::complex<double> window_step = std::polar(1.0, turn / nb_samples);
    std::complex<double> carrier = 1;
    std::complex<double> window = 1;
    std::complex<double> sum = 0;
    for (const float sample : signal) {
        sum += static_cast<double>(sample) * (1 - window.real()) * carrier;
        carrier *= step;
        window *= window_step;
    }
    return sum * (2 / nb_samples);
}

double frequency(signal_span signal, double rate, double hz) noexcept {
    for (const std::size_t hop : {signal.size() / 32, signal.size() / 8, signal.size() / 2}) {
        const auto window = signal.size() / 2;
        const std::complex<double> early = partial(signal.first(window), rate, hz);
        const std::complex<double> late = partial(signal.subspan(hop, window), rate, hz);
        const double seconds = static_cast<double>(hop) / rate;
        // The late phase counts from its own start.
        const std::complex<double> turned = late * std::polar(1.0, -turn * hz * seconds);
        hz += std::arg(turned * std::conj(early)) / (turn * seconds);
    }
    return hz;
}

double cents(double hz, double reference_hz) noexcept {
    return 1200 * std::log2(hz / reference_hz);
}
