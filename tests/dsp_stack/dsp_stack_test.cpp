#include "dsp_stack/dsp_stack.h"

#include <gtest/gtest.h>
#include <memory>

namespace {

using calls = std::vector<int>; // what an object heard: rates, and lengths as negative numbers

void set_rate(calls* p_object, int rate) { p_object->push_back(rate); }
void set_size(calls* p_object, int size) { p_object->push_back(-size); }

struct DspStack : testing::Test {
    std::unique_ptr<dsp_stack, decltype(&dsp_stack_free)> stack{dsp_stack_create("stack"),
                                                                dsp_stack_free};
};

TEST_F(DspStack, TellsEveryObjectTheRateTenFirst) {
    calls both, rates_only;
    EXPECT_EQ(dsp_stack_add(stack.get(), set_rate, set_size, &both, "both"), 0);
    dsp_stack_add(stack.get(), set_rate, nullptr, &rates_only, "rates only");
    dsp_stack_set_sampling_rate(stack.get(), 44100);
    dsp_stack_set_block_size(stack.get(), 64);
    EXPECT_EQ(both, (calls{10, 44100, -64}));
    EXPECT_EQ(rates_only, (calls{10, 44100}));
}

TEST_F(DspStack, TellsObjectsInOrderUpToThe256th) {
    calls order;
    for (int i = 0; i < 257; ++i) {
        const auto told = [&order, i](int) { order.push_back(i); };
        EXPECT_EQ(dsp_stack_add(stack.get(), told, told, &order, "object"), i < 256 ? 0 : -1);
    }
    order.clear();
    dsp_stack_set_block_size(stack.get(), 64);
    ASSERT_EQ(order.size(), 256u);
    for (int i = 0; i < 256; ++i)
        ASSERT_EQ(order[static_cast<std::size_t>(i)], i);
}

} // namespace
