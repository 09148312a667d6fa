#include "tests/realtime/violations.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

namespace {

bool compiles(int violation) {
    const std::string command =
        TEST_COMPILE " 2>/dev/null -DVIOLATION=" + std::to_string(violation);
    return std::system(command.c_str()) == 0;
}

TEST(Realtime, TheCompilerRefusesEachViolation) {
    EXPECT_TRUE(compiles(nb_violations + 1)) << "which is none";
    for (int i = 1; i <= nb_violations; ++i)
        EXPECT_FALSE(compiles(i)) << i;
}

TEST(Realtime, TheSanitizerEndsEachViolation) {
    violate(0);
    for (int i = 1; i <= nb_violations; ++i)
        EXPECT_DEATH(violate(i), "RealtimeSanitizer: unsafe-library-call") << i;
}

} // namespace
