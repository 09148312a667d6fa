/// Proves that the audio thread neither allocates nor locks nor calls the system: the functions
/// that would do so without a system call are counted; the others end a process in seccomp's strict
/// mode, which leaves it read, write and its exit.

#include "check/watched_calls.h"
#include "tests/vst/playing.h"
#include "vst/aeffeditor.h"
#include "vst/editor/tags.h"
#include "vstgui/window_headless.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <linux/seccomp.h>
#include <numeric>
#include <pthread.h>
#include <random>
#include <semaphore.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// Runs as the audio thread of a process of its own. Returns how often something forbidden was
/// called, or -SIGKILL after a system call.
int violations(const std::function<void()>& function) {
    const pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_SECCOMP, SECCOMP_MODE_STRICT);
        watched_calls_begin();
        function();
        const watched_calls calls = watched_calls_end();
        syscall(SYS_exit,
                std::min(std::accumulate(std::begin(calls.nb), std::end(calls.nb), 0L), 255L));
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

TEST(AudioThread, WhatIsForbiddenIsCaught) {
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    pthread_rwlock_t lock = PTHREAD_RWLOCK_INITIALIZER;
    sem_t semaphore;
    sem_init(&semaphore, 0, 1);
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"new and delete", [] { delete new std::vector<int>(1000); }},
        {"lock", [&] { pthread_mutex_lock(&mutex); }},
        {"read lock", [&] { pthread_rwlock_rdlock(&lock); }},
        {"semaphore", [&] { sem_wait(&semaphore); }},
        {"write", [] { (void)!write(1, "", 0); }},
    };
    for (const auto& [name, forbidden] : rows)
        EXPECT_GE(violations(forbidden), 1) << name;
    if (prctl(PR_GET_SECCOMP) != 0)
        GTEST_SKIP() << "this process is filtered: the strict mode cannot be had";
    EXPECT_EQ(violations([] { getppid(); }), -SIGKILL);
}

TEST(AudioThread, NothingAllocatesLocksOrCallsTheSystem) {
    constexpr int nb_frames = 48000;
    constexpr VstInt32 volume = 6;
    std::vector<float> left(nb_frames), right(nb_frames);
    float* outputs[] = {right.data(), left.data()};
    constexpr int statuses[] = {0x90, 0x90, 0x80, 0xB0, 0xC0, 0xE0};
    std::mt19937 random(1);
    const auto below = [&](unsigned n) { return static_cast<int>(random() % n); };
    event_list messages, taught, dumps;
    for (int i = 0; i < 10000; ++i) // half of them notes: more than the queue holds
        messages.add_midi(message_of({0, {statuses[below(6)], below(128), below(128)}}),
                          below(5000));
    for (const int value : {127, 64})
        taught.add_midi(message_of(controller(0, 20, value, 3)), 0);
    constexpr std::uint8_t dump[] = {0xF0, 1, 2, 3, 0xF7};
    dumps.add_sysex(dump, 0);
    VstEvents* const lists[] = {messages.records(), dumps.records()};
    VstEvents* const lesson = taught.records();
    for (const bool is_open : {false, true})
        for (const auto& [rate, announced] : {std::pair{22050, 0},
                                              {32000, 1},
                                              {44100, 16},
                                              {48000, 64},
                                              {88200, 512},
                                              {96000, 4096},
                                              {176400, 7},
                                              {192000, 1000},
                                              {12345, 63}}) {
            const auto p_effect = make_organ();
            headless_parent window;
            if (is_open)
                p_effect->getEditor()->open(&window);
            p_effect->setParameter(MIDI_LEARN_TAG, 1); // which a closed panel does not hear
            p_effect->setParameter(volume, 0.25f);
            p_effect->setSampleRate(static_cast<float>(rate));
            p_effect->setBlockSize(announced); // 0 is none
            EXPECT_EQ(violations([&] {
                          p_effect->processEvents(lesson);
                          if ((p_effect->getParameter(volume) == 64 / 127.0f) != is_open)
                              std::abort(); // it has not learned
                          for (const int len : {1, 64, 63, 4096, 7, 65, nb_frames}) {
                              for (VstEvents* list : lists)
                                  p_effect->processEvents(list);
                              p_effect->processReplacing(nullptr, outputs, len);
                              p_effect->setParameter(7, 0.7f);
                              p_effect->panic();
                          }
                      }),
                      0)
                << rate << " Hz, announced " << announced << ", panel open " << is_open;
            p_effect->getEditor()->close();
        }
}

} // namespace
