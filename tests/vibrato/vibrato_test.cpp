#include "vibrato/vibrato.h"

#include <gtest/gtest.h>
#include <memory>
#include <numeric>

namespace {

using samples = std::vector<float>;
using vibrato_ptr = std::unique_ptr<vibrato, decltype(&vibrato_free)>;

vibrato_ptr create(float depth, int sampling_rate = 48000) {
    vibrato_ptr v{vibrato_create(1, &depth, "test"), vibrato_free};
    vibrato_set_sampling_rate(v.get(), sampling_rate);
    return v;
}

samples process(const vibrato_ptr& v, const samples& in) {
    samples out(in.size());
    vibrato_process(v.get(), in, out);
    return out;
}

TEST(Vibrato, PhaseStepFollowsTheRate) {
    for (const auto& [rate, increment] : {std::pair{48000, 33553u}, {22050, 73042u}, {0, 0u}})
        EXPECT_EQ(create(9, rate)->stator_increment, increment) << rate << " Hz";
}

TEST(Vibrato, WithoutARateAnImpulseComesOutAfterOneAndTheDepth) {
    samples impulse(40), whole(40), shared(40);
    impulse[0] = whole[10] = 1;
    shared[10] = shared[11] = 0.5f;
    EXPECT_EQ(process(create(9, 0), impulse), whole);
    EXPECT_EQ(process(create(9.5f, 0), impulse), shared);
    EXPECT_EQ(create(9)->offset_table[0][vibrato_table_long / 4], 19u << 16) << "it grows first";
}

TEST(Vibrato, NothingIsLostWhileTheDelaySwings) {
    samples in(8000, 1.0f); // one cycle of the vibrato
    in.resize(8100);        // and the silence that lets the ring run empty
    const samples out = process(create(9), in);
    EXPECT_NEAR(std::accumulate(out.begin(), out.end(), 0.0), 8000, 0.005);
}

} // namespace
