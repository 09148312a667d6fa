#pragma once
/// Items on their way from one thread to another, in order. One thread puts, one takes, and nobody
/// waits: each side's functions are [any] thread's, but one thread's at a time.

#include "realtime/nonblocking.h"

#include <array>
#include <atomic>
#include <cstddef>

template <typename Item>
class ring {
public:
    /// Returns false where nobody has taken anything for long.
    bool put(const Item& item) noexcept NONBLOCKING {
        const std::size_t end = nb_put.load(std::memory_order_relaxed);
        if (end - nb_taken.load(std::memory_order_acquire) == items.size())
            return false;
        items[end % items.size()] = item;
        nb_put.store(end + 1, std::memory_order_release);
        return true;
    }

    /// The first of those that wait, or null. It stays until it is dropped.
    [[nodiscard]] const Item* first() const noexcept NONBLOCKING {
        const std::size_t begin = nb_taken.load(std::memory_order_relaxed);
        const bool is_empty = begin == nb_put.load(std::memory_order_acquire);
        return is_empty ? nullptr : &items[begin % items.size()];
    }
    void drop_first() noexcept NONBLOCKING { nb_taken.fetch_add(1, std::memory_order_release); }

private:
    std::array<Item, 1024> items{};
    std::atomic<std::size_t> nb_put = 0;
    std::atomic<std::size_t> nb_taken = 0;
};
