#include "korvel/filtered_zelm_oscs.h"

#include "filter/iir_design.h"
#include "korvel/fir_brickwall.h"
#include "korvel/limited_square.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <span>
#include <vector>

namespace {

constexpr double pi = std::numbers::pi;
constexpr std::size_t nb_settling_frames = 100; ///< the brick wall's delay line fills
constexpr std::size_t nb_settling_periods = 7;

/// A part's value with its tolerance.
struct component {
    double nominal, spread;

    float draw(random15& random) const {
        const double u = 2.0 * static_cast<double>(random15_unit(random)) - 1.0;
        return static_cast<float>(nominal + spread * u);
    }
};

struct rc_stage {
    component capacitor, resistor;
    int high;
};

constexpr std::array<rc_stage, 3> rc_stages{{
    {{2.2e-9, 1.1e-10}, {33000, 3300}, 0},
    {{3.3e-9, 1.65e-10}, {10000, 1000}, 0},
    {{4.7e-8, 4.7e-9}, {100000, 10000}, 1},
}};

/// The three RC sections one behind the other, in the order of operations that each has as a filter
/// alone. Fused, they overlap: a section waits for its own last output, not for the others.
class rc_network {
public:
    void draw_components(random15& random, int rate) {
        for (std::size_t i = 0; i < rc_stages.size(); ++i) {
            const float C = rc_stages[i].capacitor.draw(random);
            const float R = rc_stages[i].resistor.draw(random);
            if (const auto designed = iir_rc_first_order_coeffs(R, C, rc_stages[i].high, rate))
                coeffs[i] = *designed;
        }
    }

    void process(std::span<float> samples) {
        auto [c0, c1, c2] = coeffs;
        auto [z0, z1, z2] = state;
        for (float& sample : samples)
            sample = section(c2, z2, section(c1, z1, section(c0, z0, sample)));
        state = {z0, z1, z2};
    }

private:
    static float section(const first_order_coeffs& c, float& z, float x) {
        const float w = x - c.a1 * z;
        const float y = c.b0 * w + c.b1 * z;
        z = w;
        return y;
    }

    std::array<first_order_coeffs, 3> coeffs{};
    std::array<float, 3> state{}; ///< goes on from oscillator to oscillator
};

} // namespace

int korvel_bank_rate(int sampling_rate) {
    constexpr std::array bank_rates{22050, 44100, 48000};
    for (const int rate : {44100, 48000})
        if (sampling_rate == 2 * rate || sampling_rate == 4 * rate)
            return rate;
    return *std::min_element(bank_rates.begin(), bank_rates.end(), [=](int left, int right) {
        return std::abs(left - sampling_rate) < std::abs(right - sampling_rate);
    });
}

oscillators_bank* zelm_bank_filtered(oscillators_bank* osc_bank, random15& random) {
    const int rate = static_cast<int>(osc_bank->oscs.front().sample_rate);
    const float* taps = fir_brickwall_find(rate);
    if (!taps)
        return osc_bank;

    limited_square square(taps, rate);
    rc_network network;
    std::vector<float> scratch;
    for (oscillator& osc : osc_bank->oscs) {
        network.draw_components(random, rate);
        const auto start_phase =
            static_cast<float>(2 * pi * static_cast<double>(random15_unit(random)));
        const std::size_t length = osc.wav.samples.size();
        const std::size_t settling = nb_settling_frames + nb_settling_periods * length;
        scratch.resize(settling + length);
        square.render(static_cast<double>(osc.root_freq), static_cast<double>(start_phase),
                      scratch);
        network.process(scratch);
        std::copy_n(scratch.begin() + static_cast<std::ptrdiff_t>(settling), length,
                    osc.wav.samples.begin());
    }
    return osc_bank;
}

oscillators_bank* korvel_bank_filtered(int sampling_rate, random15& random) {
    return zelm_bank_filtered(korvel_bank_square(korvel_bank_rate(sampling_rate)), random);
}
