#include "korvel/filtered_zelm_oscs.h"

#include "plain/bank.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>

namespace {

using bank_ptr = std::unique_ptr<oscillators_bank, decltype(&oscillators_bank_free)>;

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
    for (const auto& [rate, seed] :
         {std::pair{22050, 1u}, {44100, seed_of_zero_phase()}, {48000, 2u}}) {
        random15 random{seed};
        random15 plain_random{seed};
        const bank_ptr fast{korvel_bank_filtered(rate, random), oscillators_bank_free};
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
                    << rate << " Hz, oscillator " << osc << ", sample " << i;
        }
    }
}

TEST(FilteredBank, EveryRateHasTheBankThatServesIt) {
    for (const auto& [rate, bank_rate] : {std::pair{88200, 44100},
                                          {96000, 48000},
                                          {176400, 44100},
                                          {192000, 48000},
                                          {1000, 22050},
                                          {33075, 22050},
                                          {33076, 44100},
                                          {46050, 44100},
                                          {46051, 48000},
                                          {1000000, 48000}})
        EXPECT_EQ(korvel_bank_rate(rate), bank_rate) << rate << " Hz";
    random15 random{1};
    const bank_ptr bank{korvel_bank_square(88200), oscillators_bank_free};
    EXPECT_EQ(zelm_bank_filtered(bank.get(), random), bank.get());
    EXPECT_EQ(random.state, 1u) << "without a brick wall a bank stays silent";
}

} // namespace
