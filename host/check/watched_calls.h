#pragma once
/// Calls into the C library that the audio thread must not make, counted. The functions that count
/// are this program's own under the library's names, which a plug-in that is loaded gets, too.

#include <cstddef>

/// What a call does to an audio thread.
enum class watched : int { allocation, lock, system, nb };

struct watched_calls {
    long nb[static_cast<int>(watched::nb)]{};
    const char* first[static_cast<int>(watched::nb)]{}; ///< the names of the first ones
};

/// Whether calls can be counted; a program built for a sanitizer leaves them alone. [any]
[[nodiscard]] bool watched_calls_are_counted();

/// From here on, the calls of this thread are counted. [audio]
void watched_calls_begin() noexcept;

/// Returns those since the beginning. [audio]
watched_calls watched_calls_end() noexcept;
