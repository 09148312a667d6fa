#include "filter/iir_lanes.h"

#include "filter/iir_design.h"
#include "tests/filter/filter_ptr.h"
#include "tests/noise.h"

#include <gtest/gtest.h>

namespace {

struct voices {
    std::array<filter_ptr, nb_lanes> stops{create_iir(2), create_iir(2), create_iir(1),
                                           create_iir(1)};
    std::array<filter_ptr, 2> cascades{create_iir(1, 1), create_iir(1, 1)};

    /// Of both orders, with a gain and without, one stop with its pole beside 1.
    voices() {
        iir_filter_design_multi_rate(stops[0].get(), 780, 5, 0);
        iir_filter_design_shelf_multi_rate(stops[1].get(), 20, 0.01f, 30, 1);
        iir_filter_set_gain(stops[1].get(), 0.1f);
        iir_filter_set_coeff_first_order_multi_rate(stops[2].get(), 240, 1);
        iir_filter_set_coeff_first_order_multi_rate(stops[3].get(), 200, 0);
        iir_filter_set_gain(stops[3].get(), 1.4f);
        iir_filter_set_coeff_rc_first_order_multi_rate(cascades[0].get(), 20000, 2.2e-9f, 0);
        iir_filter_set_coeff_rc_first_order_multi_rate(cascades[1].get(), 1e5f, 4.7e-8f, 0);
        iir_filter_set_gain(cascades[1].get(), 0.7f);
        for (const filter_ptr& f : cascades)
            filter_set_block_size(f.get(), 130);
    }
};

TEST(IirLanes, EverySubsetOfStopsRunsLikeTheFiltersAlone) {
    const voices lanes, alone;
    for (unsigned block = 0; block < 400; ++block) {
        // Each subset in turn: what is off stands still, and goes on when it is on again.
        const unsigned subset = block % (1u << nb_lanes);
        const std::vector<float> src = noise(block * 7 % 131, block);
        const std::vector<float> beside = noise(src.size(), block + 1);
        std::vector<float> sum = noise(src.size(), block + 2);
        std::vector<float> dest[] = {sum, sum};
        std::vector<float> expected_sum(src.size());
        std::vector<float> expected[] = {sum, sum};
        std::vector<filter*> enabled;
        for (std::size_t i = 0; i < nb_lanes; ++i)
            if (subset >> i & 1) {
                enabled.push_back(lanes.stops[i].get());
                iir_filter_process(alone.stops[i].get(), src, expected_sum, 1);
            }
        iir_filter_process(alone.cascades[0].get(), expected_sum, expected[0], 0);
        iir_filter_process(alone.cascades[1].get(), beside, expected[1], 0);

        iir_filters_process(enabled, src, sum, {lanes.cascades[0].get(), sum, dest[0]},
                            {lanes.cascades[1].get(), beside, dest[1]});
        ASSERT_EQ(sum, expected_sum) << "stops " << subset << ", block " << block;
        ASSERT_EQ(dest[0], expected[0]) << "stops " << subset << ", block " << block;
        ASSERT_EQ(dest[1], expected[1]) << "stops " << subset << ", block " << block;
    }
}

} // namespace
