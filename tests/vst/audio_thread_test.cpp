/// Proves that the audio thread neither allocates nor locks nor waits: the functions that would do
/// so are interposed here, and count what a marked thread calls.

#include "tests/vst/playing.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sched.h>
#include <semaphore.h>
#include <unistd.h>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {

thread_local bool on_audio_thread = false;
std::atomic<int> nb_violations = 0;

void note() {
    if (on_audio_thread)
        ++nb_violations;
}

template <typename Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

void* malloc(std::size_t size) {
    note();
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    note();
    return __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size) {
    note();
    return __libc_realloc(block, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    note();
    return __libc_memalign(alignment, size);
}

void free(void* block) {
    note();
    __libc_free(block);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    note();
    *block = __libc_memalign(alignment, size);
    return *block ? 0 : ENOMEM;
}

// Each notes the call and passes it on.
#define INTERPOSE(result, name, parameters, arguments)                                             \
    result name parameters {                                                                       \
        note();                                                                                    \
        static auto* const original = next<result parameters>(#name);                              \
        return original arguments;                                                                 \
    }

INTERPOSE(int, pthread_mutex_lock, (pthread_mutex_t * mutex), (mutex))
INTERPOSE(int, pthread_rwlock_rdlock, (pthread_rwlock_t * lock), (lock))
INTERPOSE(int, pthread_rwlock_wrlock, (pthread_rwlock_t * lock), (lock))
INTERPOSE(int, pthread_cond_wait, (pthread_cond_t * condition, pthread_mutex_t* mutex),
          (condition, mutex))
INTERPOSE(int, sem_wait, (sem_t * semaphore), (semaphore))
INTERPOSE(int, sched_yield, (), ())
INTERPOSE(int, nanosleep, (const timespec* duration, timespec* rest), (duration, rest))
INTERPOSE(int, clock_nanosleep,
          (clockid_t clock, int flags, const timespec* duration, timespec* rest),
          (clock, flags, duration, rest))
INTERPOSE(ssize_t, write, (int file, const void* data, std::size_t size), (file, data, size))
INTERPOSE(ssize_t, read, (int file, void* data, std::size_t size), (file, data, size))

} // extern "C"

namespace {

/// Runs as the audio thread; returns how often something forbidden was called.
int violations(const std::function<void()>& function) {
    nb_violations = 0;
    on_audio_thread = true;
    function();
    on_audio_thread = false;
    return nb_violations;
}

TEST(AudioThread, TheInterposedFunctionsCatchWhatIsForbidden) {
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    pthread_rwlock_t lock = PTHREAD_RWLOCK_INITIALIZER;
    sem_t semaphore;
    sem_init(&semaphore, 0, 1);
    const timespec no_time{};
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"new and delete", [] { delete new std::vector<int>(1000); }},
        {"lock", [&] { pthread_mutex_lock(&mutex); }},
        {"read lock", [&] { pthread_rwlock_rdlock(&lock); }},
        {"semaphore", [&] { sem_wait(&semaphore); }},
        {"yield", [] { sched_yield(); }},
        {"sleep", [&] { nanosleep(&no_time, nullptr); }},
        {"write", [] { EXPECT_EQ(write(1, "", 0), 0); }},
    };
    for (const auto& [name, forbidden] : rows)
        EXPECT_GE(violations(forbidden), 1) << name;
}

TEST(AudioThread, NothingAllocatesLocksOrWaits) {
    constexpr int nb_frames = 48000;
    std::vector<float> left(nb_frames), right(nb_frames);
    float* outputs[] = {right.data(), left.data()};
    event_list messages(random_messages(10000)); // half of them notes: more than the queue holds
    char dump[] = "\xF0 payload \xF7";
    VstMidiSysexEvent sysex{};
    sysex.type = kVstSysExType;
    sysex.dumpBytes = sizeof dump;
    sysex.sysexDump = dump;
    VstEvents dumps{1, 0, {reinterpret_cast<VstEvent*>(&sysex)}};
    for (const int announced : {0, 1, 16, 64, 4096}) {
        const auto p_effect = make_organ();
        p_effect->setSampleRate(48000);
        p_effect->setBlockSize(announced); // 0 is none
        EXPECT_EQ(violations([&] {
                      for (const int len : {1, 64, 63, 4096, 7, 65, nb_frames}) {
                          p_effect->processEvents(messages.record());
                          p_effect->processEvents(&dumps);
                          p_effect->processReplacing(nullptr, outputs, len);
                          p_effect->setParameter(7, 0.7f);
                          p_effect->panic();
                      }
                  }),
                  0)
            << "announced " << announced;
    }
}

} // namespace
