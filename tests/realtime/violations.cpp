#include "tests/realtime/violations.h"

#include <cstdio>
#include <mutex>
#include <vector>

namespace {

std::vector<int> numbers;
std::mutex mutex;

} // namespace

void violate([[maybe_unused]] int number) noexcept {
#if !VIOLATION || VIOLATION == 1
    if (number == 1)
        numbers.push_back(1);
#endif
#if !VIOLATION || VIOLATION == 2
    if (number == 2)
        mutex.lock();
#endif
#if !VIOLATION || VIOLATION == 3
    if (number == 3)
        std::puts("late");
#endif
#if !VIOLATION || VIOLATION == 4
    if (number == 4)
        try {
            throw number;
        } catch (int) {
        }
#endif
#if !VIOLATION || VIOLATION == 5
    if (number == 5)
        closure<void()>{[] { numbers.push_back(1); }}();
#endif
}
