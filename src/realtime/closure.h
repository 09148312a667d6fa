#pragma once
/// A function and the few words that it works on, for callbacks that the audio thread makes: what a
/// std::function holds could do anything, while a closure takes only what does not block.

#include "realtime/nonblocking.h"

#include <array>
#include <cstddef>
#include <new>
#include <type_traits>

template <typename Signature>
class closure;

/// Calling an empty one is an error.
template <typename Result, typename... Arguments>
class closure<Result(Arguments...)> {
public:
    closure() = default;

    /// Of a lambda that captures two pointers at most, or numbers. [setup]
    template <typename Function>
    requires(!std::is_same_v<Function, closure>) closure(Function function) {
        static_assert(std::is_trivially_copyable_v<Function> && sizeof function <= sizeof(words)
                      && alignof(Function) <= alignof(words));
        new (captured.data()) Function(function);
        call = [](const words& its_words, Arguments... arguments) noexcept NONBLOCKING -> Result {
            return (*std::launder(reinterpret_cast<const Function*>(its_words.data())))(
                arguments...);
        };
    }

    explicit operator bool() const noexcept NONBLOCKING { return call != nullptr; }

    Result operator()(Arguments... arguments) const noexcept NONBLOCKING {
        return call(captured, arguments...);
    }

private:
    struct alignas(void*) words : std::array<std::byte, 2 * sizeof(void*)> {};

    words captured{};
    Result (*call)(const words&, Arguments...) noexcept NONBLOCKING = nullptr;
};
