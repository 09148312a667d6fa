#include "platform/trial.h"

#include <csignal>
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
          {[] { std::abort(); }, seconds{20}, "it crashes in a trial run (Aborted)"},
          {[] { _exit(0); }, seconds{20}, "it ends the process in a trial run"},
          {[] { pause(); }, seconds{0}, "it does not finish a trial run within 0 seconds"}})
        EXPECT_EQ(trial_run("it", row.attempt, row.limit), row.complaint);
}

TEST(Trial, SignalsInBetweenDoNotCountAsAHang) {
    struct sigaction action {}; // without SA_RESTART
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, nullptr);
    const auto disturb = [parent = getpid()] {
        for (int i = 0; i < 2000; ++i)
            kill(parent, SIGUSR1);
    };
    EXPECT_EQ(trial_run("it", disturb, std::chrono::seconds{20}), "");
}

} // namespace
