#include "vibrato/vibrato.h"

#include "tests/noise.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
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

TEST(Vibrato, NothingIsLostWhileTheDelaySwings) {
    samples in(8000, 1.0f); // one cycle of the vibrato
    in.resize(8100);        // and the silence that lets the ring run empty
    const samples out = process(create(9.0f, 48000).get(), in);
    EXPECT_NEAR(std::accumulate(out.begin(), out.end(), 0.0), 8000, 0.005);
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

} // namespace
