#include "vstgui/sigpipe_guard.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace {

volatile std::sig_atomic_t nb_signals = 0;

struct SigpipeGuardTest : testing::Test {
    SigpipeGuardTest() {
        nb_signals = 0;
        std::signal(SIGPIPE, [](int) { nb_signals = nb_signals + 1; });
        EXPECT_EQ(pipe(ends), 0);
        close(ends[0]);
    }
    ~SigpipeGuardTest() override {
        close(ends[1]);
        std::signal(SIGPIPE, SIG_DFL);
    }

    void writeToNobody() const { EXPECT_EQ(write(ends[1], "x", 1), -1); }

    int ends[2] = {};
};

TEST_F(SigpipeGuardTest, WhatIsRaisedUnderItIsNeverDelivered) {
    {
        const SigpipeGuard guard;
        writeToNobody();
    }
    EXPECT_EQ(nb_signals, 0);
    writeToNobody();
    EXPECT_EQ(nb_signals, 1) << "afterwards all is as before";
}

TEST_F(SigpipeGuardTest, WhatStoodBeforeStillStands) {
    sigset_t pipe_signal, before;
    sigemptyset(&pipe_signal);
    sigaddset(&pipe_signal, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe_signal, &before);
    writeToNobody();
    {
        const SigpipeGuard guard;
        writeToNobody();
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    EXPECT_EQ(nb_signals, 1);
}

} // namespace
