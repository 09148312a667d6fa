#pragma once
/// NONBLOCKING stands behind the noexcept of every function that the audio thread may call: nothing
/// that it does allocates, frees, locks, waits or asks the system for anything. A compiler that
/// knows the attribute holds each such function to it, and all that it calls.

#if defined(__has_cpp_attribute)
#if __has_cpp_attribute(clang::nonblocking)
#define NONBLOCKING [[clang::nonblocking]]
#endif
#endif

#ifndef NONBLOCKING
#define NONBLOCKING
#endif

/// Around a call that the compiler cannot look into or must not complain of. The reason stands
/// beside it.
#if defined(__clang__)
#define NONBLOCKING_UNCHECKED_BEGIN                                                                \
    _Pragma("clang diagnostic push") _Pragma("clang diagnostic ignored \"-Wfunction-effects\"")
#define NONBLOCKING_UNCHECKED_END _Pragma("clang diagnostic pop")
#else
#define NONBLOCKING_UNCHECKED_BEGIN
#define NONBLOCKING_UNCHECKED_END
#endif
