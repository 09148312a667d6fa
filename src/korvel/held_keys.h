#pragma once
/// The manual keys that sustain through a whole block. Most blocks hold the same keys as the block
/// before: then the tone generator has what they give already, and a key costs one bit.

#include "harpmatrix/harpmatrix.h"
#include "realtime/nonblocking.h"
#include "tonegenerator/tonegenerator.h"

#include <cstdint>

constexpr int max_held_keys = 64;

struct held_keys {
    std::uint64_t keys = 0;       ///< bit k: key k is held through this block
    std::uint64_t before = 0;     ///< the same for the block before
    std::uint64_t registered = 0; ///< the keys whose gains the tone generator holds
};

/// Adds a key, below max_held_keys, to the block. [audio]
inline void held_keys_add(held_keys& held, unsigned key) noexcept NONBLOCKING {
    held.keys |= std::uint64_t{1} << key;
}

/// Makes the block's keys those of the block before. [audio]
inline void held_keys_stay(held_keys& held) noexcept NONBLOCKING { held.keys = held.before; }

/// Has the tone generator hold what contact 0 of the held keys gives, summed over the keys by
/// index, of those that have their bit in `audible`, and starts the next block. [audio]
void held_keys_register(held_keys& held, std::uint64_t audible, const harpmatrix* p_matrix,
                        tonegenerator* p_tg) noexcept NONBLOCKING;
