#include "platform/trial.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <unistd.h>

namespace {

TEST(Trial, TellsHowTheAttemptEnded) {
    struct end {
        std::function<void()> attempt;
        std::chrono::seconds limit;
        const char* complaint;
    };
    using std::chrono::seconds;
    for (const end& row :
         {end{[] {}, seconds{20}, ""},
          {[] { throw std::runtime_error{"no"}; }, seconds{20}, ""},
          {[] { pause(); }, seconds{0}, "it does not finish a trial run within 0 seconds"}})
        EXPECT_EQ(trial_run("it", row.attempt, row.limit), row.complaint);
}

} // namespace
