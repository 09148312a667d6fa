/// winpthreads takes a thread-local slot of the process, of which there are about a thousand, with
/// the first pthread_once, and keeps it when the library is unloaded. libgcc calls that as soon as
/// a 32-bit library is loaded, so a host that loads and unloads its plug-ins would run out of them.
/// The linker sends all calls here (--wrap).

#include <atomic>
#include <pthread.h>
#include <windows.h>

namespace {

constexpr pthread_once_t running = PTHREAD_ONCE_INIT + 1;
constexpr pthread_once_t done = PTHREAD_ONCE_INIT + 2;

} // namespace

extern "C" int __wrap_pthread_once(pthread_once_t* p_once, void (*initialise)()) {
    const std::atomic_ref state(*p_once);
    pthread_once_t before = PTHREAD_ONCE_INIT;
    if (state.compare_exchange_strong(before, running)) {
        initialise();
        state.store(done);
    }
    while (state.load() != done)
        SwitchToThread();
    return 0;
}
