#include "check/watched_calls.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

thread_local bool is_counting = false;
thread_local watched_calls counted{};

void count(watched kind, const char* name) noexcept {
    if (!is_counting)
        return;
    const auto index = static_cast<int>(kind);
    if (counted.nb[index]++ == 0)
        counted.first[index] = name;
}

/// The C library's function of that name.
template <typename Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

void watched_calls_begin() noexcept {
    counted = {};
    is_counting = true;
}

watched_calls watched_calls_end() noexcept {
    is_counting = false;
    return counted;
}

bool watched_calls_are_counted() { return true; }

extern "C" {

// The allocator under its own names, for finding it by dlsym would allocate.
void* __libc_malloc(std::size_t nb_bytes);
void* __libc_calloc(std::size_t nb, std::size_t nb_bytes);
void* __libc_realloc(void* memory, std::size_t nb_bytes);
void* __libc_memalign(std::size_t alignment, std::size_t nb_bytes);
void __libc_free(void* memory);

#define WATCHED __attribute__((visibility("default")))

WATCHED void* malloc(std::size_t nb_bytes) {
    count(watched::allocation, "malloc");
    return __libc_malloc(nb_bytes);
}

WATCHED void* calloc(std::size_t nb, std::size_t nb_bytes) {
    count(watched::allocation, "calloc");
    return __libc_calloc(nb, nb_bytes);
}

WATCHED void* realloc(void* memory, std::size_t nb_bytes) {
    count(watched::allocation, "realloc");
    return __libc_realloc(memory, nb_bytes);
}

WATCHED void free(void* memory) {
    if (memory)
        count(watched::allocation, "free");
    __libc_free(memory);
}

WATCHED void* memalign(std::size_t alignment, std::size_t nb_bytes) {
    count(watched::allocation, "memalign");
    return __libc_memalign(alignment, nb_bytes);
}

WATCHED void* aligned_alloc(std::size_t alignment, std::size_t nb_bytes) {
    count(watched::allocation, "aligned_alloc");
    return __libc_memalign(alignment, nb_bytes);
}

WATCHED int posix_memalign(void** memory, std::size_t alignment, std::size_t nb_bytes) {
    count(watched::allocation, "posix_memalign");
    *memory = __libc_memalign(alignment, nb_bytes);
    return *memory ? 0 : ENOMEM;
}

// The rest is found on its first call. A function that is called before anything is loaded, and
// whose search would call it again, is none of them.
#define WATCH(kind, result, name, parameters, arguments)                                           \
    WATCHED result name parameters {                                                               \
        static auto* const p_next = next<result parameters>(#name);                                \
        count(kind, #name);                                                                        \
        return p_next arguments;                                                                   \
    }

WATCH(watched::lock, int, pthread_mutex_lock, (pthread_mutex_t * mutex), (mutex))
WATCH(watched::lock, int, pthread_rwlock_rdlock, (pthread_rwlock_t * lock), (lock))
WATCH(watched::lock, int, pthread_rwlock_wrlock, (pthread_rwlock_t * lock), (lock))
WATCH(watched::lock, int, pthread_cond_wait, (pthread_cond_t * condition, pthread_mutex_t* mutex),
      (condition, mutex))
WATCH(watched::lock, int, pthread_mutex_timedlock, (pthread_mutex_t * mutex, const timespec* end),
      (mutex, end))
WATCH(watched::lock, int, pthread_mutex_clocklock,
      (pthread_mutex_t * mutex, clockid_t clock, const timespec* end), (mutex, clock, end))
WATCH(watched::lock, int, pthread_cond_timedwait,
      (pthread_cond_t * condition, pthread_mutex_t* mutex, const timespec* end),
      (condition, mutex, end))
WATCH(watched::lock, int, pthread_cond_clockwait,
      (pthread_cond_t * condition, pthread_mutex_t* mutex, clockid_t clock, const timespec* end),
      (condition, mutex, clock, end))
WATCH(watched::lock, int, pthread_join, (pthread_t thread, void** result), (thread, result))
WATCH(watched::lock, int, sem_wait, (sem_t * semaphore), (semaphore))
WATCH(watched::lock, int, sem_timedwait, (sem_t * semaphore, const timespec* end), (semaphore, end))
WATCH(watched::lock, int, clock_nanosleep,
      (clockid_t clock, int flags, const timespec* pause, timespec* rest),
      (clock, flags, pause, rest))
WATCH(watched::lock, int, usleep, (useconds_t pause), (pause))
WATCH(watched::lock, int, poll, (pollfd * files, nfds_t nb_files, int milliseconds),
      (files, nb_files, milliseconds))
WATCH(watched::lock, int, nanosleep, (const timespec* pause, timespec* rest), (pause, rest))
WATCH(watched::system, std::FILE*, fopen, (const char* file, const char* mode), (file, mode))
WATCH(watched::system, std::FILE*, fopen64, (const char* file, const char* mode), (file, mode))
WATCH(watched::system, void*, mmap64,
      (void* address, std::size_t length, int access, int flags, int file, off64_t offset),
      (address, length, access, flags, file, offset))
WATCH(watched::system, void*, mmap,
      (void* address, std::size_t length, int access, int flags, int file, off_t offset),
      (address, length, access, flags, file, offset))
WATCH(watched::system, int, munmap, (void* address, std::size_t length), (address, length))
WATCH(watched::system, ssize_t, read, (int file, void* memory, std::size_t length),
      (file, memory, length))
WATCH(watched::system, ssize_t, write, (int file, const void* memory, std::size_t length),
      (file, memory, length))

#define WATCH_OPENING(name, parameters, type, ...)                                                 \
    WATCHED int name parameters {                                                                  \
        static auto* const p_next = next<type>(#name);                                             \
        count(watched::system, #name);                                                             \
        va_list more;                                                                              \
        va_start(more, flags);                                                                     \
        const auto mode = va_arg(more, mode_t);                                                    \
        va_end(more);                                                                              \
        return p_next(__VA_ARGS__, flags, mode);                                                   \
    }

WATCH_OPENING(open, (const char* file, int flags, ...), int(const char*, int, ...), file)
WATCH_OPENING(open64, (const char* file, int flags, ...), int(const char*, int, ...), file)
WATCH_OPENING(openat, (int folder, const char* file, int flags, ...),
              int(int, const char*, int, ...), folder, file)

} // extern "C"
