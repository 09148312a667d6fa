#include "live/message_queue.h"

#include <jack/ringbuffer.h>
#include <new>

namespace {

jack_ringbuffer_t* as_ring(void* p_ring) { return static_cast<jack_ringbuffer_t*>(p_ring); }

jack_ringbuffer_t* create() {
    if (auto* p_ring = jack_ringbuffer_create(message_queue::capacity * sizeof(timed_message)))
        return p_ring;
    throw std::bad_alloc{};
}

} // namespace

void message_queue::freed::operator()(void* p_ring) const { jack_ringbuffer_free(as_ring(p_ring)); }

message_queue::message_queue() : p_ring_{create()} {}

void message_queue::push(const timed_message& message) noexcept {
    auto* p_ring = as_ring(p_ring_.get());
    if (jack_ringbuffer_write_space(p_ring) >= sizeof message)
        jack_ringbuffer_write(p_ring, reinterpret_cast<const char*>(&message), sizeof message);
}

std::optional<timed_message> message_queue::pop() noexcept {
    auto* p_ring = as_ring(p_ring_.get());
    timed_message message;
    if (jack_ringbuffer_read_space(p_ring) < sizeof message)
        return std::nullopt;
    jack_ringbuffer_read(p_ring, reinterpret_cast<char*>(&message), sizeof message);
    return message;
}
