#include "filter/fir_filter.h"

#include "tests/filter/filter_ptr.h"
#include "tests/noise.h"

#include <gtest/gtest.h>

namespace {

using samples = std::vector<float>;

filter_ptr create_fir(const samples& taps, int rate = 48000) {
    filter_ptr f =
        own(fir_filter_create("fir", static_cast<int>(taps.size()) - 1,
                              static_cast<int>(filter_rates.size()), filter_rates.data()));
    filter_set_sampling_rate(f.get(), rate);
    filter_set_b_coeffs(f.get(), taps.data());
    return f;
}

samples process(filter* p_filter, const samples& src) {
    samples dest(src.size(), 7.0f);
    fir_filter_process(p_filter, src, dest, 1); // replaces, whatever `add` says
    return dest;
}

TEST(FirFilter, AnImpulseReturnsTheTapsInOrder) {
    const samples taps = noise(101, 1);
    const filter_ptr f = create_fir(taps);
    f->gain = 2.0f;                // has no effect
    process(f.get(), samples(30)); // the line starts anywhere
    samples impulse(150);
    impulse[0] = 1;
    samples expected = taps;
    expected.resize(impulse.size());
    EXPECT_EQ(process(f.get(), impulse), expected);
}

TEST(FirFilter, TheDelayGoesOnAcrossBlocksAndInPlace) {
    const samples src = noise(64, 2);
    for (std::size_t delay = 0; delay < 3; ++delay) {
        samples taps(3);
        taps[delay] = 1;
        for (std::size_t cut = 0; cut <= src.size(); ++cut) {
            const filter_ptr f = create_fir(taps);
            samples out = src;
            for (const auto part : {std::span(out).first(cut), std::span(out).subspan(cut)})
                fir_filter_process(f.get(), part, part, 0);
            for (std::size_t n = 0; n < out.size(); ++n)
                ASSERT_EQ(out[n], n < delay ? 0.0f : src[n - delay])
                    << "delay " << delay << ", cut at " << cut << ", frame " << n;
        }
    }
}

TEST(FirFilter, WithoutARateNothingHappens) {
    const filter_ptr f = create_fir({1}, 96000);
    EXPECT_EQ(process(f.get(), samples(3)), samples(3, 7.0f));
}

} // namespace
