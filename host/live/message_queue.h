#pragma once
/// Messages on their way from one thread to the audio thread. Nobody waits.

#include "message/message.h"

#include <memory>
#include <optional>

struct timed_message {
    short_message bytes{};
    std::uint8_t nb_bytes = 3;
    double seconds = 0; ///< when it came, by whatever clock both ends agree on

    [[nodiscard]] message_view view() const { return {bytes.data(), nb_bytes}; }
};

class message_queue {
public:
    static constexpr std::size_t capacity = 1024;

    message_queue();

    void push(const timed_message& message) noexcept; ///< drops it if so many wait. [one thread]
    std::optional<timed_message> pop() noexcept;      ///< [audio]

private:
    struct freed {
        void operator()(void* p_ring) const;
    };
    std::unique_ptr<void, freed> p_ring_; // libjack's, which needs no server
};
