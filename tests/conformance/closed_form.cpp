#include "conformance/closed_form.h"

#include <cmath>
#include <complex>
#include <numbers>

namespace {

constexpr double turn = 2 * std::numbers::pi;

struct section {
    double b0, b1, b2;
    double a0, a1, a2;
};

double gain(const section& s, double hz, double rate) {
    const std::complex<double> z1 = std::polar(1.0, -turn * hz / rate);
    const std::complex<double> z2 = z1 * z1;
    return std::abs((s.b0 + s.b1 * z1 + s.b2 * z2) / (s.a0 + s.a1 * z1 + s.a2 * z2));
}

/// First order from K, the tangent of the warped cutoff.
section low_pass(double k) { return {k, k, 0, k + 1, k - 1, 0}; }
section high_pass(double k) { return {1, -1, 0, k + 1, k - 1, 0}; }

} // namespace

double flute_gain(double hz, double rate) {
    const double omega = turn * 780 / rate;
    const double alpha = std::sin(omega) / (2 * 5);
    const double c = std::cos(omega);
    return gain({(1 - c) / 2, 1 - c, (1 - c) / 2, 1 + alpha, -2 * c, 1 - alpha}, hz, rate);
}

double bright_gain(double hz, double rate) {
    const double omega = turn * 20 / rate;
    const double a = std::pow(10, 30.0 / 40);
    const double c = std::cos(omega);
    const double s = std::sqrt(a) / 0.01 * std::sin(omega);
    return 0.1
           * gain({a * ((a + 1) + (a - 1) * c + s), -2 * a * ((a - 1) + (a + 1) * c),
                   a * ((a + 1) + (a - 1) * c - s), (a + 1) - (a - 1) * c + s,
                   2 * ((a - 1) - (a + 1) * c), (a + 1) - (a - 1) * c - s},
                  hz, rate);
}

double brass_gain(double hz, double rate) {
    return gain(high_pass(std::tan(turn * 240 / rate)), hz, rate);
}

double mellow_gain(double hz, double rate) {
    return 1.4 * gain(low_pass(std::tan(turn * 200 / rate)), hz, rate);
}

double contour_gain(double contour, double hz, double rate) {
    const double resistance = contour * 100000 + 6000;
    const double stage = gain(low_pass(std::tan(1 / (2 * resistance * 2.2e-9 * rate))), hz, rate);
    return stage * stage;
}
