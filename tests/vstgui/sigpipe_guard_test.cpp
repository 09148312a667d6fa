#include "vstgui/sigpipe_guard.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace {

volatile std::sig_atomic_t nb_signals = 0;

TEST(SigpipeGuardTest, HidesWhatIsRaisedUnderItAndNothingElse) {
    int ends[2] = {};
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    const auto write_to_nobody = [&] { EXPECT_EQ(write(ends[1], "x", 1), -1); };
    std::signal(SIGPIPE, [](int) { nb_signals = nb_signals + 1; });
    {
        const SigpipeGuard guard;
        write_to_nobody();
    }
    EXPECT_EQ(nb_signals, 0);
    write_to_nobody();
    EXPECT_EQ(nb_signals, 1) << "afterwards all is as before";

    sigset_t pipe_signal, before;
    sigemptyset(&pipe_signal);
    sigaddset(&pipe_signal, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe_signal, &before);
    write_to_nobody();
    { const SigpipeGuard guard; }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    EXPECT_EQ(nb_signals, 2) << "one that stood before is taken";
    close(ends[1]);
    std::signal(SIGPIPE, SIG_DFL);
}

} // namespace
