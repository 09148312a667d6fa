#include "random15/random15.h"

#include <gtest/gtest.h>

namespace {

// The well-known draws of a runtime's rand with these constants, seeded with 1.
TEST(Random15, DrawsTheSequenceOfItsSeed) {
    random15 random{1};
    for (int draw : {41, 18467, 6334, 26500, 19169})
        EXPECT_EQ(random15_next(random), draw);
}

TEST(Random15, TheLargestDrawIsOne) {
    random15 random{4028364353u};
    EXPECT_EQ(random15_unit(random), 1.0f);
}

} // namespace
