#pragma once
/// The notes of a block wait in a queue until the block is asked for: only then is its length
/// known, and with it where each falls. Size and memory are fixed; all is [audio].

#include "realtime/nonblocking.h"

#include <array>
#include <cstddef>

struct queued_message {
    char midi_data[3];
    int frame; ///< as the host gave it, relative to the coming block
};

class note_queue {
public:
    static constexpr std::size_t capacity = 4096;

    [[nodiscard]] bool empty() const noexcept NONBLOCKING { return first == end; }

    /// Whether there is no room behind the last message. Emptying the queue makes room.
    [[nodiscard]] bool full() const noexcept NONBLOCKING { return end == capacity; }

    /// The queue must not be full.
    void push(const queued_message& message) noexcept NONBLOCKING { messages[end++] = message; }

    /// The message that came first, and its removal. The queue must not be empty.
    [[nodiscard]] const queued_message& front() const noexcept NONBLOCKING {
        return messages[first];
    }
    void pop() noexcept NONBLOCKING {
        if (++first == end)
            clear();
    }

    void clear() noexcept NONBLOCKING { first = end = 0; }

private:
    std::array<queued_message, capacity> messages{};
    std::size_t first = 0;
    std::size_t end = 0;
};
