#include "filter/iir_filter.h"

#include "filter/iir_design.h"
#include "tests/filter/filter_ptr.h"
#include "tests/noise.h"

#include <gtest/gtest.h>
#include <limits>

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

samples process(filter* p_filter, const samples& src) {
    samples dest(src.size(), std::numeric_limits<float>::quiet_NaN());
    iir_filter_process(p_filter, src, dest, 0);
    return dest;
}

TEST(IirFilter, ImpulseResponsesFollowTheRecurrence) {
    samples impulse(200);
    impulse[0] = 1;
    for (const int order : {1, 2}) {
        const filter_ptr f = create_low_pass(order);
        const samples response = process(f.get(), impulse);
        // h[n] = b[n] - a1 h[n-1] - a2 h[n-2], in the transfer function's own terms.
        std::vector<double> h(impulse.size() + 2);
        for (std::size_t n = 0; n < impulse.size(); ++n) {
            double sum = n < f->b_coeffs.size() ? static_cast<double>(f->b_coeffs[n]) : 0.0;
            for (std::size_t k = 1; k <= n && k < f->a_coeffs.size(); ++k)
                sum -= static_cast<double>(f->a_coeffs[k]) * h[n - k];
            h[n] = sum;
            EXPECT_NEAR(static_cast<double>(response[n]), h[n], 1e-6)
                << "order " << order << ", frame " << n;
        }
    }
}

TEST(IirFilter, GainAddAndCascadeInEveryCombination) {
    const samples src = noise(256, 1);
    const samples before = noise(256, 2);
    for (const int order : {1, 2})
        for (const unsigned nb_stages : {0u, 1u, 2u})
            for (const float gain : {1.0f, 1.4f})
                for (const int add : {0, 1}) {
                    samples expected = src;
                    for (unsigned k = 0; k <= nb_stages; ++k) {
                        expected = process(create_low_pass(order).get(), expected);
                        for (float& y : expected)
                            y *= gain;
                    }
                    for (std::size_t n = 0; n < expected.size() && add; ++n)
                        expected[n] = before[n] + expected[n];

                    samples dest = before;
                    iir_filter_process(create_low_pass(order, nb_stages, gain).get(), src, dest,
                                       add);
                    EXPECT_EQ(dest, expected)
                        << "order " << order << ", " << nb_stages << " further stages, gain "
                        << gain << ", add " << add;
                }
}

TEST(IirFilter, InPlaceAndInBlocksGiveTheSameSamples) {
    const samples src = noise(256, 3);
    for (const int order : {1, 2})
        for (const unsigned nb_stages : {0u, 2u}) {
            const samples whole = process(create_low_pass(order, nb_stages).get(), src);
            samples parts = src;
            const filter_ptr f = create_low_pass(order, nb_stages);
            for (const auto& [start, length] :
                 {std::pair{0u, 1u}, {1u, 0u}, {1u, 64u}, {65u, 191u}})
                iir_filter_process(f.get(), std::span(parts).subspan(start, length),
                                   std::span(parts).subspan(start, length), 0);
            EXPECT_EQ(parts, whole) << "order " << order << ", " << nb_stages << " further stages";
        }
}

TEST(IirFilter, WhatCannotBeProcessedLeavesDestAlone) {
    const std::pair<const char*, filter_ptr> rows[] = {
        {"cascade, 65 frames in a block of 64", create_low_pass(1, 1)},
        {"no rate selected", create_iir(2)},
        {"order 3", create_iir(3)}};
    filter_set_block_size(rows[0].second.get(), 64);
    filter_set_sampling_rate(rows[2].second.get(), 48000);
    const samples src = noise(65, 4);
    const samples before = noise(65, 5);
    for (const auto& [name, f] : rows) {
        samples dest = before;
        iir_filter_process(f.get(), src, dest, 0);
        EXPECT_EQ(dest, before) << name;
    }
    samples dest(64);
    iir_filter_process(rows[0].second.get(), std::span(src).first(64), dest, 0);
    EXPECT_NE(dest, samples(64)) << "a block of 64 is processed";
}

TEST(IirFilter, EachRateKeepsItsState) {
    const samples src = noise(200, 6);
    const samples whole = process(create_low_pass(2).get(), src);
    const filter_ptr f = create_low_pass(2);
    samples parts = src;
    const auto first = std::span(parts).first(100);
    const auto second = std::span(parts).subspan(100);
    iir_filter_process(f.get(), first, first, 0);
    filter_set_sampling_rate(f.get(), 44100);
    process(f.get(), noise(50, 7));
    filter_set_sampling_rate(f.get(), 48000);
    iir_filter_process(f.get(), second, second, 0);
    EXPECT_EQ(parts, whole);

    filter_reset_z_buff(f.get());
    EXPECT_EQ(process(f.get(), src), whole) << "from a state of zeros again";
}

TEST(IirFilter, AnUnsupportedRateLeavesTheSetInUse) {
    const samples src = noise(200, 8);
    const samples whole = process(create_low_pass(2).get(), src);
    const filter_ptr f = create_low_pass(2);
    int told = 0;
    f->callback_compute_coeffs = [&](filter*, int rate) { told = rate; };
    filter_set_sampling_rate(f.get(), 96000);
    EXPECT_EQ(f->sample_rate, -1);
    EXPECT_EQ(told, 0);
    EXPECT_EQ(process(f.get(), src), whole);
    filter_set_sampling_rate(f.get(), 48000);
    EXPECT_EQ(told, 48000);
}

} // namespace
