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

samples process(const filter_ptr& f, const samples& src, samples dest = samples(256)) {
    iir_filter_process(f.get(), src, dest, 0);
    return dest;
}

TEST(IirFilter, WhatCannotBeProcessedLeavesDestAlone) {
    const std::pair<const char*, filter_ptr> rows[] = {
        {"cascade, 65 frames in a block of 64", create_iir(1, 1)},
        {"no rate selected", create_iir(2)},
        {"order 3", create_iir(3)}};
    filter_set_block_size(rows[0].second.get(), 64);
    for (const auto row : {0, 2})
        filter_set_sampling_rate(rows[row].second.get(), 48000);
    const samples before = noise(65, 5);
    for (const auto& [name, f] : rows)
        EXPECT_EQ(process(f, noise(65, 4), before), before) << name;
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
