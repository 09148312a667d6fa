#include "plain/bank.h"

#include "filter/fir_filter.h"
#include "filter/iir_design.h"
#include "filter/iir_filter.h"
#include "korvel/filtered_zelm_oscs.h"
#include "korvel/fir_brickwall.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>

namespace {

using filter_ptr = std::unique_ptr<filter, decltype(&filter_free)>;

struct filters {
    explicit filters(int rate)
        : brick_wall(fir_filter_create("Brickwall fs/2", fir_brickwall_order, 1, &rate),
                     filter_free),
          low_1(iir_filter_create("1 st Low Pass", 1, 0, 1, &rate), filter_free),
          low_2(iir_filter_create("2 nd Low Pass", 1, 0, 1, &rate), filter_free),
          high_3(iir_filter_create("3 th High Pass", 1, 0, 1, &rate), filter_free) {
        for (const filter_ptr* p_filter : {&brick_wall, &low_1, &low_2, &high_3})
            filter_set_sampling_rate(p_filter->get(), rate);
        filter_set_b_coeffs(brick_wall.get(), fir_brickwall_find(rate));
    }

    filter_ptr brick_wall, low_1, low_2, high_3;
};

double tolerance(random15& random) { return 2 * static_cast<double>(random15_unit(random)) - 1; }

void draw(filter* p_filter, random15& random, double C, double C_spread, double R, double R_spread,
          int high) {
    const auto capacitor = static_cast<float>(C + C_spread * tolerance(random));
    const auto resistor = static_cast<float>(R + R_spread * tolerance(random));
    iir_filter_set_coeff_rc_first_order(p_filter, resistor, capacitor, high);
}

void fill_with_square(std::span<float> samples, double frequency, double rate, double start_phase) {
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double angle =
            2 * std::numbers::pi * frequency * static_cast<double>(i) / rate + start_phase;
        samples[i] = std::sin(angle) > 0 ? 0.5f : -0.5f;
    }
}

} // namespace

oscillators_bank* plain_bank_filtered(int sampling_rate, random15& random) {
    oscillators_bank* p_bank = korvel_bank_square(korvel_bank_rate(sampling_rate));
    const auto rate = static_cast<int>(p_bank->oscs[0].sample_rate);
    const filters chain(rate);
    for (oscillator& osc : p_bank->oscs) {
        draw(chain.low_1.get(), random, 2.2e-9, 1.1e-10, 33000, 3300, 0);
        draw(chain.low_2.get(), random, 3.3e-9, 1.65e-10, 10000, 1000, 0);
        draw(chain.high_3.get(), random, 4.7e-8, 4.7e-9, 100000, 10000, 1);
        const auto start_phase =
            static_cast<float>(2 * std::numbers::pi * static_cast<double>(random15_unit(random)));
        const std::size_t length = osc.wav.samples.size();
        std::vector<float> scratch(8 * length + 100);
        fill_with_square(scratch, static_cast<double>(osc.root_freq), rate,
                         static_cast<double>(start_phase));
        fir_filter_process(chain.brick_wall.get(), scratch, scratch, 0);
        for (const filter_ptr* p_filter : {&chain.low_1, &chain.low_2, &chain.high_3})
            iir_filter_process(p_filter->get(), scratch, scratch, 0);
        std::copy(scratch.end() - static_cast<std::ptrdiff_t>(length), scratch.end(),
                  osc.wav.samples.begin());
    }
    return p_bank;
}
