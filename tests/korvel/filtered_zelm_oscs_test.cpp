#include "korvel/filtered_zelm_oscs.h"

#include "tests/plain/bank.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <memory>
#include <numbers>
#include <span>

namespace {

constexpr double pi = std::numbers::pi;

using bank_ptr = std::unique_ptr<oscillators_bank, decltype(&oscillators_bank_free)>;

bank_ptr create(int rate, random15& random) {
    return {korvel_bank_filtered(rate, random), oscillators_bank_free};
}

bank_ptr create(int rate, unsigned seed) {
    random15 random{seed};
    return create(rate, random);
}

void expect_plain(int rate, unsigned seed) {
    random15 random{seed};
    random15 plain_random{seed};
    const bank_ptr fast = create(rate, random);
    const bank_ptr plain{plain_bank_filtered(rate, plain_random), oscillators_bank_free};
    EXPECT_EQ(random.state, plain_random.state) << "as many draws";
    ASSERT_EQ(fast->nb_oscs, plain->nb_oscs);
    for (std::size_t osc = 0; osc < fast->oscs.size(); ++osc) {
        const auto& samples = fast->oscs[osc].wav.samples;
        const auto& expected = plain->oscs[osc].wav.samples;
        ASSERT_EQ(samples.size(), expected.size()) << "oscillator " << osc;
        for (std::size_t i = 0; i < samples.size(); ++i)
            // The high-pass's pole beside 1 lets its state grow to about 1000, where single
            // precision has steps of 6e-5.
            ASSERT_NEAR(samples[i], expected[i], 1.3e-4f)
                << rate << " Hz, seed " << seed << ", oscillator " << osc << ", sample " << i;
    }
}

/// The first seed from which an oscillator starts with a phase of exactly 0.
unsigned seed_of_zero_phase() {
    for (unsigned seed = 1;; ++seed) {
        random15 random{seed};
        for (int draw = 1; draw <= 7 * korvel_nb_oscs; ++draw)
            if (random15_next(random) == 0 && draw % 7 == 0)
                return seed;
    }
}

TEST(FilteredBank, IsThatOfThePlainForm) {
    expect_plain(22050, 1);
    expect_plain(44100, seed_of_zero_phase());
    expect_plain(48000, 2);
}

TEST(FilteredBank, SeedsMakeInstruments) {
    const auto differ = [](const bank_ptr& left, const bank_ptr& right) {
        int nb_different = 0;
        for (std::size_t osc = 0; osc < left->oscs.size(); ++osc)
            nb_different += left->oscs[osc].wav.samples != right->oscs[osc].wav.samples;
        return nb_different;
    };
    random15 random{1};
    const bank_ptr first = create(44100, random);
    EXPECT_EQ(differ(first, create(44100, 1)), 0) << "one seed, one bank";
    EXPECT_EQ(differ(first, create(44100, random)), korvel_nb_oscs) << "the next build";
    EXPECT_EQ(first->name, "Korvel");
    EXPECT_EQ(first->oscs[60].wav.sample_long, 168);
}

TEST(FilteredBank, EveryRateHasTheBankThatServesIt) {
    const std::pair<int, int> rows[] = {
        {22050, 22050},  {44100, 44100},  {48000, 48000}, {88200, 44100}, {96000, 48000},
        {176400, 44100}, {192000, 48000}, {32000, 22050}, {8000, 22050},  {1000, 22050},
        {33075, 22050},  {33076, 44100},  {46050, 44100}, {46051, 48000}, {1000000, 48000}};
    for (const auto& [rate, bank_rate] : rows) {
        EXPECT_EQ(korvel_bank_rate(rate), bank_rate) << rate << " Hz";
        const bank_ptr bank = create(rate, 1);
        EXPECT_EQ(bank->oscs[0].sample_rate, static_cast<unsigned>(8 * bank_rate)) << rate << " Hz";
    }
}

TEST(FilteredBank, ATableRateWithoutABrickWallStaysSilent) {
    random15 random{1};
    const bank_ptr bank{korvel_bank_square(88200), oscillators_bank_free};
    EXPECT_EQ(zelm_bank_filtered(bank.get(), random), bank.get());
    EXPECT_EQ(random.state, 1u);
    for (const oscillator& osc : bank->oscs)
        EXPECT_EQ(std::ranges::count(osc.wav.samples, 0.0f), osc.wav.sample_long);
}

/// The table under a Blackman-Harris window, which keeps strong partials out of weak ones, and the
/// seam of the table, which holds slightly less than a period.
std::vector<double> windowed(const oscillator& osc) {
    std::vector<double> samples(osc.wav.samples.begin(), osc.wav.samples.end());
    for (std::size_t n = 0; n < samples.size(); ++n) {
        const double t = 2 * pi * static_cast<double>(n) / static_cast<double>(samples.size());
        samples[n] *=
            1 - 1.36109 * std::cos(t) + 0.39381 * std::cos(2 * t) - 0.03256 * std::cos(3 * t);
    }
    return samples;
}

/// The amplitude at k cycles.
double partial(const std::vector<double>& samples, int k) {
    const auto length = static_cast<double>(samples.size());
    std::complex<double> sum = 0;
    for (std::size_t n = 0; n < samples.size(); ++n)
        sum += samples[n] * std::polar(1.0, -2 * pi * k * static_cast<double>(n) / length);
    return 2 * std::abs(sum) / length;
}

TEST(FilteredBank, NothingIsLeftAboveTheBrickWall) {
    const bank_ptr bank = create(22050, 1);
    for (std::size_t number = 48; number < bank->oscs.size(); ++number) {
        const std::vector<double> table = windowed(bank->oscs[number]);
        const auto length = static_cast<int>(table.size());
        for (int k = 37 * length / 100; k <= length / 2; ++k)
            // Without the brick wall they reach from 7e-6 up.
            EXPECT_LT(partial(table, k), 2e-6) << "oscillator " << number << ", partial " << k;
    }
}

} // namespace
