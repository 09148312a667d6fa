#pragma once
/// The notes of a block wait in a queue until the block is asked for: only then is its length
/// known, and with it where each falls. Size and memory are fixed; all is [audio].

#include <array>
#include <cstddef>
#include <span>

struct queued_message {
    char midi_data[3];
    int frame; ///< as the host gave it, relative to the coming block
};

class NoteQueue {
public:
    static constexpr std::size_t capacity = 4096;

    [[nodiscard]] bool full() const noexcept { return nb_messages == capacity; }

    /// Appends a message; the queue must not be full.
    void push(const queued_message& message) noexcept { messages[nb_messages++] = message; }

    void clear() noexcept { nb_messages = 0; }

    /// The messages in the order of their arrival.
    [[nodiscard]] std::span<const queued_message> waiting() const noexcept {
        return std::span(messages).first(nb_messages);
    }

private:
    std::array<queued_message, capacity> messages{};
    std::size_t nb_messages = 0;
};
