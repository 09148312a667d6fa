#include "dsp_stack/dsp_stack.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace {

using calls = std::vector<std::pair<int, int>>; ///< object, and the rate or block length told

TEST(DspStack, TellsUpTo256ObjectsInOrderTheRateTenFirst) {
    const std::unique_ptr<dsp_stack, decltype(&dsp_stack_free)> stack{dsp_stack_create("stack"),
                                                                      dsp_stack_free};
    calls heard, expected;
    for (int i = 0; i < 257; ++i) {
        const std::function<void(int)> told = [&heard, i](int value) {
            heard.emplace_back(i, value);
        };
        EXPECT_EQ(dsp_stack_add(stack.get(), told, i == 1 ? nullptr : told, &heard, "object"),
                  i < 256 ? 0 : -1);
    }
    dsp_stack_set_sampling_rate(stack.get(), 44100);
    dsp_stack_set_block_size(stack.get(), 64);
    for (const int told : {10, 44100, 64})
        for (int i = 0; i < 256; ++i)
            if (told != 64 || i != 1)
                expected.emplace_back(i, told);
    EXPECT_EQ(heard, expected);
}

} // namespace
