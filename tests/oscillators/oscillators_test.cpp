#include "oscillators/oscillators.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>

namespace {

using bank_ptr = std::unique_ptr<oscillators_bank, decltype(&oscillators_bank_free)>;

bank_ptr korvel_bank(int rate) { return {korvel_bank_square(rate), oscillators_bank_free}; }

TEST(Oscillators, TheBankHolds61SilentTablesFromC2ToC7) {
    const bank_ptr bank = korvel_bank(44100);
    ASSERT_EQ(bank->oscs.size(), 61u);
    EXPECT_STREQ(bank->oscs[60].name, "C_7");
    for (const oscillator& osc : bank->oscs) {
        EXPECT_EQ(&osc - bank->oscs.data(), osc.number);
        EXPECT_EQ(osc.sample_rate, 352800u);
        EXPECT_EQ(std::ranges::count(osc.wav.samples, 0.0f), osc.wav.sample_long);
    }
}

TEST(Oscillators, TablesHoldOnePeriodCutToWholeSamples) {
    for (auto [rate, osc, sample_long] :
         {std::tuple{44100, 0u, 5393}, {44100, 60u, 168}, {48000, 60u, 183}, {22050, 33u, 400}})
        EXPECT_EQ(korvel_bank(rate)->oscs[osc].wav.sample_long, sample_long)
            << "oscillator " << osc << " at " << rate;
}

TEST(Oscillators, OtherRatesGetTheNearestRatesBank) {
    for (auto [rate, nearest] : {std::pair{1, 22050u},
                                 {33074, 22050u},
                                 {33076, 44100u},
                                 {46049, 44100u},
                                 {46051, 48000u},
                                 {176400, 192000u},
                                 {2147483647, 192000u}})
        EXPECT_EQ(korvel_bank(rate)->oscs[0].sample_rate, oversampling * nearest) << rate;
}

} // namespace
