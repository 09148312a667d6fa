#include "oscillators/tavine.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace {

constexpr std::array rates{22050, 44100, 48000, 88200, 96000, 192000};

constexpr std::size_t notes_an_octave = 12;

constexpr std::string_view note_names = "C_C#D_D#E_F_F#G_G#A_A#B_";

/// 110 * 2^((n - 9) / 12) Hz, the octave of A_2 in equal temperament on A_4 = 440 Hz.
constexpr std::array<double, notes_an_octave> octave_2{
    65.40639132514966,  69.29565774421802, 73.41619197935188, 77.78174593052023,  82.40688922821748,
    87.30705785825097,  92.49860567790861, 97.99885899543733, 103.82617439498628, 110.0,
    116.54094037952248, 123.47082531403103};

constexpr double equal_tempered(std::size_t osc) {
    return octave_2[osc % notes_an_octave] * static_cast<double>(1u << (osc / notes_an_octave));
}

struct fraction {
    std::int64_t p, n;
};

constexpr double distance(double x, fraction f) {
    const double d = x - static_cast<double>(f.p) / static_cast<double>(f.n);
    return d < 0 ? -d : d;
}

/// The fraction p / n nearest to x with n <= max_n, in lowest terms: the last convergent of x's
/// continued fraction within the bound, or the last of the fractions between it and the next.
constexpr fraction nearest_fraction(double x, std::int64_t max_n) {
    fraction previous{1, 0};
    fraction current{static_cast<std::int64_t>(x), 1};
    double remainder = x - static_cast<double>(current.p);
    while (remainder > 1e-9) {
        const double rest = 1 / remainder;
        const auto whole = static_cast<std::int64_t>(rest);
        const fraction next{previous.p + whole * current.p, previous.n + whole * current.n};
        if (next.n > max_n)
            break;
        previous = current;
        current = next;
        remainder = rest - static_cast<double>(whole);
    }
    const std::int64_t k = (max_n - previous.n) / current.n;
    const fraction between{previous.p + k * current.p, previous.n + k * current.n};
    return distance(x, current) <= distance(x, between) ? current : between;
}

constexpr tuned_frequency tune(std::size_t osc, int rate) {
    const auto [p, n] = nearest_fraction(equal_tempered(osc) / rate, rate);
    return {static_cast<float>(static_cast<double>(p) * rate / static_cast<double>(n)),
            static_cast<float>(p)};
}

constexpr auto tuned_frequencies() {
    std::array<std::array<tuned_frequency, tavine_nb_oscs>, tavine_nb_rates> table{};
    for (std::size_t r = 0; r < rates.size(); ++r)
        for (std::size_t osc = 0; osc < tavine_nb_oscs; ++osc)
            table[r][osc] = tune(osc, rates[r]);
    // C_7 at 48 kHz is tuned to a shorter loop, 0.07 ppm from the nearest.
    table[2][60] = {2093.00439453125f, 647.0f};
    return table;
}

constexpr auto specs() {
    std::array<oscillator_spec, tavine_nb_oscs> table{};
    for (std::size_t osc = 0; osc < tavine_nb_oscs; ++osc) {
        const std::string_view note = note_names.substr(2 * (osc % notes_an_octave), 2);
        table[osc].root_freq = static_cast<float>(equal_tempered(osc));
        table[osc].name[0] = note[0];
        table[osc].name[1] = note[1];
        table[osc].name[2] = static_cast<char>('2' + osc / notes_an_octave);
    }
    return table;
}

} // namespace

constexpr std::array<int, tavine_nb_rates> tavine_sampling_rates = rates;

constexpr std::array<oscillator_spec, tavine_nb_oscs> tavine_oscillator_specs = specs();

constexpr std::array<std::array<tuned_frequency, tavine_nb_oscs>, tavine_nb_rates>
    tavine_optimized_oscs_freqs = tuned_frequencies();
