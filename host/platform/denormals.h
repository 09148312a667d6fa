#pragma once
/// Numbers too small to be heard, which processors compute with slowly.

#ifdef __SSE2__
#include <xmmintrin.h>
#endif

/// From now on this thread takes them for zero. [any]
inline void denormals_turn_off() noexcept {
#ifdef __SSE2__
    constexpr unsigned flush_to_zero = 0x8000, denormals_are_zero = 0x0040;
    _mm_setcsr(_mm_getcsr() | flush_to_zero | denormals_are_zero);
#endif
}
