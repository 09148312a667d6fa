#include "vibrato/vibrato.h"

#include "tests/noise.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <memory>
#include <numbers>
#include <numeric>

namespace {

using samples = std::vector<float>;
using vibrato_ptr = std::unique_ptr<vibrato, decltype(&vibrato_free)>;

vibrato_ptr create(float depth, int sampling_rate = 0) {
    vibrato_ptr v{vibrato_create(1, &depth, "test"), vibrato_free};
    vibrato_set_sampling_rate(v.get(), sampling_rate);
    return v;
}

samples process(vibrato* p_vibrato, const samples& in) {
    samples out(in.size());
    vibrato_process(p_vibrato, in, out);
    return out;
}

samples impulse(std::size_t nb_samples) {
    samples in(nb_samples);
    in[0] = 1;
    return in;
}

TEST(Vibrato, OffsetsSwingBetweenOneAndOneAndTwiceTheDepth) {
    const vibrato_ptr v = create(9.0f);
    const std::pair<std::size_t, unsigned> rows[] = {
        {0, 655360}, {1, 656264}, {1024, 1245184}, {2048, 655360}, {3072, 65536}};
    for (const auto& [i, offset] : rows)
        EXPECT_EQ(v->offset_table[0][i], offset) << "entry " << i;
}

TEST(Vibrato, PhaseStepFollowsTheRate) {
    const std::pair<int, unsigned> rows[] = {
        {48000, 33553}, {44100, 36521}, {22050, 73042}, {0, 0}};
    const vibrato_ptr v = create(9.0f);
    for (const auto& [rate, increment] : rows) {
        vibrato_set_sampling_rate(v.get(), rate);
        EXPECT_EQ(v->stator_increment, increment) << rate << " Hz";
    }
}

TEST(Vibrato, WithoutARateAnImpulseComesOutAfterOneAndTheDepth) {
    samples expected(40);
    expected[10] = 1.0f;
    EXPECT_EQ(process(create(9.0f).get(), impulse(40)), expected);
    expected[10] = expected[11] = 0.5f;
    EXPECT_EQ(process(create(9.5f).get(), impulse(40)), expected) << "shared between two frames";
}

TEST(Vibrato, AConstantStaysNearlyConstantAfterTheDelay) {
    const samples out = process(create(9.0f, 48000).get(), samples(48000, 1.0f));
    const auto settled = std::span(out).subspan(10);
    EXPECT_EQ(*std::max_element(out.begin(), out.begin() + 10), 0.0f);
    EXPECT_NEAR(*std::ranges::min_element(settled), 0.986f, 0.002f);
    EXPECT_NEAR(*std::ranges::max_element(settled), 1.026f, 0.002f);
}

TEST(Vibrato, NothingIsLostWhileTheDelaySwings) {
    samples in(8000, 1.0f); // one cycle of the vibrato
    in.resize(8100);        // and the silence that lets the ring run empty
    const samples out = process(create(9.0f, 48000).get(), in);
    EXPECT_NEAR(std::accumulate(out.begin(), out.end(), 0.0), 8000, 0.005);
}

TEST(Vibrato, PhaseAndReadPositionComeRoundWithinTheirBounds) {
    const vibrato_ptr v = create(9.0f, 48000);
    const unsigned cycle_long = (1u << 28) / v->stator_increment;
    for (unsigned n = 0; n <= cycle_long; ++n) {
        process(v.get(), {1.0f});
        ASSERT_LT(v->stator, 1u << 28) << "frame " << n;
        ASSERT_LT(v->out_pos, vibrato_ring_long) << "frame " << n;
    }
    EXPECT_EQ(v->stator >> 16, 0u);
    EXPECT_EQ(v->out_pos, (1023 + cycle_long + 1) % vibrato_ring_long);
}

/// The lowest and the highest pitch, as shares of its own, at which a vibrato lets a tone out: that
/// of its phasor, from a cosine and a sine, turning over 1/50 of the vibrato's cycle.
std::pair<double, double> pitch_range(int rate, float depth) {
    constexpr double pitch = 2 * std::numbers::pi * 0.001; // radians a frame
    const auto nb_frames = static_cast<std::size_t>(rate / 3);
    samples cosine(nb_frames);
    samples sine(nb_frames);
    for (std::size_t n = 0; n < nb_frames; ++n) {
        cosine[n] = static_cast<float>(std::cos(pitch * static_cast<double>(n)));
        sine[n] = static_cast<float>(std::sin(pitch * static_cast<double>(n)));
    }
    cosine = process(create(depth, rate).get(), cosine);
    sine = process(create(depth, rate).get(), sine);
    const auto phasor = [&](std::size_t n) { return std::complex<double>(cosine[n], sine[n]); };
    const auto window = static_cast<std::size_t>(rate / 300);
    std::pair<double, double> range{1, 1};
    for (std::size_t n = 200; n + window < nb_frames; ++n) {
        const double angle = std::arg(phasor(n + window) * std::conj(phasor(n)));
        const double turned = angle < 0 ? angle + 2 * std::numbers::pi : angle;
        const double share = turned / (pitch * static_cast<double>(window));
        range = {std::min(range.first, share), std::max(range.second, share)};
    }
    return range;
}

/// A delay D(n) = 1 + d (1 + sin 2 pi f n / fs) of what goes in lets it out at the pitch
/// 1 / (1 + D'): D' swings by 2 pi f d / fs either way.
TEST(Vibrato, PitchDeviatesByTheDelaysSlope) {
    const std::pair<int, float> rows[] = {
        {48000, 9.0f}, {44100, 9.0f}, {22050, 9.0f}, {96000, 18.0f}, {192000, 36.0f}};
    for (const auto& [rate, depth] : rows) {
        const auto [lowest, highest] = pitch_range(rate, depth);
        const double slope = 2 * std::numbers::pi * 6 * static_cast<double>(depth) / rate;
        EXPECT_NEAR(lowest, 1 / (1 + slope), 0.03 * slope) << rate << " Hz, depth " << depth;
        EXPECT_NEAR(highest, 1 / (1 - slope), 0.03 * slope) << rate << " Hz, depth " << depth;
    }
}

TEST(Vibrato, BlocksCutAnywhereAndInPlaceGiveTheSameSamples) {
    const samples in = noise(200, 1);
    const samples whole = process(create(9.0f, 48000).get(), in);
    for (std::size_t cut = 0; cut <= in.size(); ++cut) {
        const vibrato_ptr v = create(9.0f, 48000);
        samples parts = in;
        for (const auto part : {std::span(parts).first(cut), std::span(parts).subspan(cut)})
            vibrato_process(v.get(), part, part);
        ASSERT_EQ(parts, whole) << "cut at " << cut;
    }
}

TEST(Vibrato, AnotherDepthLetsPhaseAndRingGoOn) {
    const vibrato_ptr v = create(9.0f, 48000);
    process(v.get(), samples(100, 1.0f));
    const auto before = std::tuple(v->stator, v->out_pos, v->p_internal_buffer);
    vibrato_set_depth(v.get(), 0, 18.0f);
    vibrato_set_sampling_rate(v.get(), 96000);
    EXPECT_EQ(std::tuple(v->stator, v->out_pos, v->p_internal_buffer), before);
    EXPECT_EQ(v->offset_table[0][0], 19u << 16);
}

TEST(Vibrato, ProcessesWithItsFirstLevel) {
    const float depths[] = {9.0f, 20.0f};
    const vibrato_ptr v{vibrato_create(2, depths, "test"), vibrato_free};
    v->current_level = 1;
    EXPECT_EQ(process(v.get(), impulse(40)), process(create(9.0f).get(), impulse(40)));
}

} // namespace
