#include "filter/iir_filter.h"

#include "filter/iir_design.h"
#include "tests/filter/filter_ptr.h"
#include "tests/noise.h"

#include <gtest/gtest.h>

namespace {

using samples = std::vector<float>;

/// A second-order low-pass, designed for all rates, at 48000 Hz.
filter_ptr create_low_pass() {
    filter_ptr f = create_iir(2);
    iir_filter_design_multi_rate(f.get(), 1000, 5, 0);
    return f;
}

samples process(const filter_ptr& f, samples src) {
    iir_filter_process(f.get(), src, src, 0);
    return src;
}

TEST(IirFilter, EachRateKeepsItsStateAndAnUnsupportedOneTheSetInUse) {
    const samples src = noise(256, 6);
    const samples whole = process(create_low_pass(), src);
    const filter_ptr f = create_low_pass();
    std::vector<int> told;
    f->callback_compute_coeffs = [&](filter*, int rate) { told.push_back(rate); };
    samples parts = src;
    const auto first = std::span(parts).first(100);
    const auto second = std::span(parts).subspan(100);
    iir_filter_process(f.get(), first, first, 0);
    filter_set_sampling_rate(f.get(), 44100);
    process(f, src);
    filter_set_sampling_rate(f.get(), 48000);
    filter_set_sampling_rate(f.get(), 96000);
    EXPECT_EQ(f->sample_rate, -1);
    EXPECT_EQ(told, (std::vector{44100, 48000}));
    iir_filter_process(f.get(), second, second, 0);
    EXPECT_EQ(parts, whole);

    filter_reset_z_buff(f.get());
    EXPECT_EQ(process(f, src), whole) << "from a state of zeros again";
}

} // namespace
