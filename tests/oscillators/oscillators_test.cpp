#include "oscillators/oscillators.h"

#include <gtest/gtest.h>
#include <memory>

namespace {

TEST(Oscillators, OtherRatesGetTheNearestRatesBank) {
    for (auto [rate, nearest] : {std::pair{1, 22050u},
                                 {33074, 22050u},
                                 {33076, 44100u},
                                 {46049, 44100u},
                                 {46051, 48000u},
                                 {176400, 192000u},
                                 {2147483647, 192000u}}) {
        const std::unique_ptr<oscillators_bank, decltype(&oscillators_bank_free)> bank{
            korvel_bank_square(rate), oscillators_bank_free};
        EXPECT_EQ(bank->oscs[0].sample_rate, oversampling * nearest) << rate;
    }
}

} // namespace
