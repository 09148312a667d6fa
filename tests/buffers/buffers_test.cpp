#include "buffers/buffers.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>

namespace {

TEST(Buffers, EveryHolderShowsItsZeroedBufferAfterANewLength) {
    const std::unique_ptr<buffers, decltype(&buffers_free)> set{buffers_create("set", 8),
                                                                buffers_free};
    std::vector<std::span<float>> holders(max_nb_buffers);
    for (auto& holder : holders)
        buffers_add(set.get(), "buffer", &holder);
    float mine[2];
    std::span<float> refused{mine};
    EXPECT_TRUE(buffers_add(set.get(), "one too many", &refused).empty());
    int before = 0;
    for (const int block_size : {8, 256, 64, 512, 512, 0, 64, -1}) {
        buffers_set_block_size(set.get(), block_size);
        const float content = block_size == before ? 1.0f : 0.0f;
        for (const auto& holder : holders) {
            ASSERT_EQ(std::ssize(holder), std::max(block_size, 0));
            ASSERT_EQ(std::ranges::count(holder, content), std::ssize(holder)) << block_size;
            std::ranges::fill(holder, 1.0f); // the next buffer must not share it
        }
        before = block_size;
    }
    EXPECT_EQ(refused.data(), mine);
}

} // namespace
