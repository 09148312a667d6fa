#include "filter/iir_filter.h"

#include "filter/iir_design.h"
#include "tests/filter/filter_ptr.h"
#include "tests/noise.h"

#include <gtest/gtest.h>

namespace {

using samples = std::vector<float>;

/// A low-pass of either order, designed for all rates, at 48000 Hz.
filter_ptr create_low_pass(int order, unsigned nb_cascaded_stages = 0, float gain = 1.0f) {
    filter_ptr f = create_iir(order, nb_cascaded_stages);
    if (order == 1)
        iir_filter_set_coeff_first_order_multi_rate(f.get(), 1000, 0);
    else
        iir_filter_design_multi_rate(f.get(), 1000, 5, 0);
    iir_filter_set_gain(f.get(), gain);
    filter_set_block_size(f.get(), 256);
    return f;
}

samples process(const filter_ptr& f, const samples& src, samples dest = samples(256), int add = 0) {
    iir_filter_process(f.get(), src, dest, add);
    return dest;
}

/// One section by the transfer function's own terms: y[n] = sum b[k] x[n-k] - sum a[k] y[n-k].
std::vector<double> recur(const filter& f, const std::vector<double>& x) {
    std::vector<double> y(x.size());
    for (std::size_t n = 0; n < x.size(); ++n) {
        for (std::size_t k = 0; k <= n && k < f.b_coeffs.size(); ++k)
            y[n] += static_cast<double>(f.b_coeffs[k]) * x[n - k]
                    - (k > 0 ? static_cast<double>(f.a_coeffs[k]) * y[n - k] : 0.0);
    }
    return y;
}

TEST(IirFilter, SectionsFollowTheRecurrenceWithGainAddAndCascadeInBlocks) {
    const samples src = noise(256, 1);
    const samples before = noise(256, 2);
    for (int row = 0; row < 48; ++row) {
        const int order = 1 + row % 2;
        const auto nb_further = static_cast<unsigned>(row / 2 % 3);
        const float gain = row / 6 % 2 ? 1.4f : 1.0f;
        const int add = row / 12 % 2;
        const std::size_t cut = row / 24 % 2 ? 100 : 0;
        const filter_ptr f = create_low_pass(order, nb_further, gain);
        std::vector<double> expected(src.begin(), src.end());
        for (unsigned k = 0; k <= nb_further; ++k) {
            expected = recur(*f, expected);
            for (double& y : expected)
                y *= static_cast<double>(gain);
        }
        samples dest = add ? before : src; // without `add` in place
        const auto in = std::span(add ? src : dest);
        const std::span out{dest};
        iir_filter_process(f.get(), in.first(cut), out.first(cut), add);
        iir_filter_process(f.get(), in.subspan(cut), out.subspan(cut), add);
        for (std::size_t n = 0; n < dest.size(); ++n)
            ASSERT_NEAR(static_cast<double>(dest[n]),
                        expected[n] + (add ? static_cast<double>(before[n]) : 0.0), 1e-4)
                << "order " << order << ", " << nb_further << " further sections, gain " << gain
                << ", add " << add << ", cut at " << cut << ", frame " << n;
    }
}

TEST(IirFilter, WhatCannotBeProcessedLeavesDestAlone) {
    const std::pair<const char*, filter_ptr> rows[] = {
        {"cascade, 65 frames in a block of 64", create_low_pass(1, 1)},
        {"no rate selected", create_iir(2)},
        {"order 3", create_iir(3)}};
    filter_set_block_size(rows[0].second.get(), 64);
    filter_set_sampling_rate(rows[2].second.get(), 48000);
    const samples before = noise(65, 5);
    for (const auto& [name, f] : rows)
        EXPECT_EQ(process(f, noise(65, 4), before), before) << name;
    EXPECT_NE(process(rows[0].second, noise(64, 4)), samples(256)) << "a block of 64 is processed";
}

TEST(IirFilter, EachRateKeepsItsStateAndAnUnsupportedOneTheSetInUse) {
    const samples src = noise(256, 6);
    const samples whole = process(create_low_pass(2), src);
    const filter_ptr f = create_low_pass(2);
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
