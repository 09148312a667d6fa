#include "dsp_stack/dsp_stack.h"

#include <gtest/gtest.h>
#include <memory>

namespace {

using calls = std::vector<std::pair<std::size_t, int>>; ///< object, and the rate or -length told

struct object {
    std::size_t number;
    calls* heard;
};

void set_rate(object* p_told, int rate) { p_told->heard->emplace_back(p_told->number, rate); }
void set_size(object* p_told, int size) { p_told->heard->emplace_back(p_told->number, -size); }

TEST(DspStack, TellsUpTo256ObjectsInOrderTheRateTenFirst) {
    const std::unique_ptr<dsp_stack, decltype(&dsp_stack_free)> stack{dsp_stack_create("stack"),
                                                                      dsp_stack_free};
    calls heard, expected;
    std::vector<object> objects(257);
    for (std::size_t i = 0; i < objects.size(); ++i) {
        objects[i] = {i, &heard};
        const auto size_callback = i == 1 ? nullptr : set_size;
        EXPECT_EQ(dsp_stack_add(stack.get(), set_rate, size_callback, &objects[i], "object"),
                  i < 256 ? 0 : -1);
    }
    for (const int told : {10, 44100, -64})
        for (std::size_t i = 0; i < 256; ++i)
            if (told > 0 || i != 1)
                expected.emplace_back(i, told);
    dsp_stack_set_sampling_rate(stack.get(), 44100);
    dsp_stack_set_block_size(stack.get(), 64);
    EXPECT_EQ(heard, expected);
}

} // namespace
