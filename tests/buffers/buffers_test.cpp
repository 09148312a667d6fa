#include "buffers/buffers.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>

namespace {

struct Buffers : testing::Test {
    std::unique_ptr<buffers, decltype(&buffers_free)> set{buffers_create("set", 0), buffers_free};
    std::vector<std::span<float>> holders{max_nb_buffers};

    Buffers() {
        for (auto& holder : holders)
            buffers_add(set.get(), "buffer", &holder);
    }
};

TEST_F(Buffers, EveryHolderShowsItsZeroedBufferAfterEveryLength) {
    for (int block_size : {256, 64, 512, 0, 64, -1}) {
        buffers_set_block_size(set.get(), block_size);
        for (const auto& holder : holders) {
            ASSERT_EQ(std::ssize(holder), std::max(block_size, 0));
            ASSERT_EQ(std::ranges::count(holder, 0.0f), std::ssize(holder)) << block_size;
            std::ranges::fill(holder, 1.0f); // the next buffer must not share it
        }
    }
}

TEST_F(Buffers, TheSameLengthKeepsTheContentsAndShorterOnesTheMemory) {
    buffers_set_block_size(set.get(), 512);
    const float* const address = holders[7].data();
    holders[7][511] = 0.5f;
    buffers_set_block_size(set.get(), 512);
    EXPECT_EQ(holders[7][511], 0.5f);
    for (int block_size : {64, 512, 1}) {
        buffers_set_block_size(set.get(), block_size);
        EXPECT_EQ(holders[7].data(), address) << block_size;
    }
}

TEST_F(Buffers, A257thIsRefusedAndItsHolderLeftAlone) {
    float mine[2];
    std::span<float> holder{mine};
    EXPECT_TRUE(buffers_add(set.get(), "one too many", &holder).empty());
    buffers_set_block_size(set.get(), 8);
    EXPECT_EQ(holder.data(), mine);
}

} // namespace
