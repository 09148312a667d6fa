#include "random15/random15.h"

#include <gtest/gtest.h>

namespace {

// The well-known draws of a runtime's rand with these constants, seeded with 1.
TEST(Random15, DrawsTheSequenceOfItsSeedUpToOne) {
    random15 random{1};
    for (const int draw : {41, 18467, 6334, 26500, 19169})
        EXPECT_EQ(random15_next(random), draw);
    random.state = 4028364353u; // from which the largest is drawn
    EXPECT_EQ(random15_unit(random), 1.0f);
}

} // namespace
