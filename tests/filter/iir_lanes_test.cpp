#include "filter/iir_lanes.h"

#include "filter/iir_design.h"
#include "tests/filter/filter_ptr.h"
#include "tests/noise.h"

#include <gtest/gtest.h>
#include <random>

namespace {

/// Stops of both orders, with a gain and without, one of them with its pole beside 1.
std::array<filter_ptr, iir_nb_lanes> create_stops() {
    std::array stops{create_iir(2), create_iir(2), create_iir(1), create_iir(1)};
    iir_filter_design_multi_rate(stops[0].get(), 780, 5, 0);
    iir_filter_design_shelf_multi_rate(stops[1].get(), 20, 0.01f, 30, 1);
    iir_filter_set_gain(stops[1].get(), 0.1f);
    iir_filter_set_coeff_first_order_multi_rate(stops[2].get(), 240, 1);
    iir_filter_set_coeff_first_order_multi_rate(stops[3].get(), 200, 0);
    iir_filter_set_gain(stops[3].get(), 1.4f);
    return stops;
}

/// The contour filter's and the bass filter's design, one of them with a gain.
std::array<filter_ptr, 2> create_cascades() {
    std::array cascades{create_iir(1, 1), create_iir(1, 1)};
    iir_filter_set_coeff_rc_first_order_multi_rate(cascades[0].get(), 20000, 2.2e-9f, 0);
    iir_filter_set_coeff_rc_first_order_multi_rate(cascades[1].get(), 1e5f, 4.7e-8f, 0);
    iir_filter_set_gain(cascades[1].get(), 0.7f);
    for (const filter_ptr& f : cascades)
        filter_set_block_size(f.get(), 130);
    return cascades;
}

template <std::size_t count>
void expect_equal_states(const std::array<filter_ptr, count>& lanes,
                         const std::array<filter_ptr, count>& alone) {
    for (std::size_t i = 0; i < count; ++i)
        EXPECT_TRUE(std::ranges::equal(lanes[i]->z_buff, alone[i]->z_buff)) << "filter " << i;
}

TEST(IirLanes, EverySubsetOfStopsRunsLikeTheFiltersAlone) {
    const auto lanes = create_stops();
    const auto alone = create_stops();
    const auto lane_cascades = create_cascades();
    const auto alone_cascades = create_cascades();
    std::mt19937 random{9};
    for (unsigned block = 0; block < 400; ++block) {
        // Each subset in turn: what is off stands still, and goes on when it is on again.
        const unsigned subset = block % (1u << iir_nb_lanes);
        SCOPED_TRACE(testing::Message() << "stops " << subset << ", block " << block);
        const std::vector<float> src = noise(random() % 130, block);
        const std::vector<float> beside = noise(src.size(), block + 1);
        std::vector<float> sum = noise(src.size(), block + 2);
        std::vector<float> dest[] = {sum, sum};
        std::vector<float> expected_sum(src.size());
        std::vector<float> expected[] = {sum, sum};
        std::vector<filter*> enabled;
        for (std::size_t i = 0; i < iir_nb_lanes; ++i)
            if (subset >> i & 1) {
                enabled.push_back(lanes[i].get());
                iir_filter_process(alone[i].get(), src, expected_sum, 1);
            }
        iir_filter_process(alone_cascades[0].get(), expected_sum, expected[0], 0);
        iir_filter_process(alone_cascades[1].get(), beside, expected[1], 0);

        iir_filters_process(enabled, src, sum, {lane_cascades[0].get(), sum, dest[0]},
                            {lane_cascades[1].get(), beside, dest[1]});
        ASSERT_EQ(sum, expected_sum);
        ASSERT_EQ(dest[0], expected[0]);
        ASSERT_EQ(dest[1], expected[1]);
        expect_equal_states(lanes, alone);
        expect_equal_states(lane_cascades, alone_cascades);
    }
}

} // namespace
