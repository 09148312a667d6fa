#pragma once
/// Reads big-endian numbers from bytes. Past the end it gives zeros and remembers that it was
/// asked.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

struct byte_reader {
    std::span<const std::uint8_t> rest;
    bool overrun = false;

    std::span<const std::uint8_t> take(std::size_t nb_bytes) {
        overrun = overrun || nb_bytes > rest.size();
        const auto taken = rest.first(std::min(nb_bytes, rest.size()));
        rest = rest.subspan(taken.size());
        return taken;
    }

    std::uint8_t take_byte() {
        const auto byte = take(1);
        return byte.empty() ? std::uint8_t{0} : byte[0];
    }

    std::uint32_t take_number(std::size_t nb_bytes) {
        std::uint32_t number = 0;
        for (const std::uint8_t byte : take(nb_bytes))
            number = number << 8 | byte;
        return number;
    }
};
