#include "filter/fir_filter.h"

#include "tests/filter/filter_ptr.h"
#include "tests/noise.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

/// An impulse at frame 20 through the taps, in place, in two blocks; `add` and gain mean nothing.
std::vector<float> response(const std::vector<float>& taps, int rate, std::size_t cut) {
    const filter_ptr f =
        own(fir_filter_create("fir", static_cast<int>(taps.size()) - 1,
                              static_cast<int>(filter_rates.size()), filter_rates.data()));
    filter_set_sampling_rate(f.get(), rate);
    filter_set_b_coeffs(f.get(), taps.data());
    f->gain = 2;
    std::vector<float> out(150);
    out[20] = 1;
    for (const auto part : {std::span(out).first(cut), std::span(out).subspan(cut)})
        fir_filter_process(f.get(), part, part, 1);
    return out;
}

TEST(FirFilter, AnImpulseReturnsTheTapsInOrderHoweverBlocksAreCut) {
    const std::vector<float> taps = noise(101, 1);
    std::vector<float> expected(150);
    std::ranges::copy(taps, expected.begin() + 20);
    for (std::size_t cut = 0; cut <= expected.size(); ++cut)
        ASSERT_EQ(response(taps, 48000, cut), expected) << "cut at " << cut;
    EXPECT_EQ(std::ranges::count(response(taps, 96000, 0), 0.0f), 149) << "no rate, no change";
}

} // namespace
