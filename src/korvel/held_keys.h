#pragma once
/// The manual keys that sustain through a whole block, and what they add to each oscillator. Most
/// blocks hold the same keys as the block before: then the sums of the wiring's conductances,
/// formed over the keys by index, hold already, and a key costs one bit.

#include "harpmatrix/harpmatrix.h"
#include "realtime/nonblocking.h"
#include "tonegenerator/tonegenerator.h"

#include <cstdint>
#include <vector>

constexpr int max_held_keys = 64;

struct held_keys {
    std::uint64_t keys = 0;              ///< bit k: key k is held through this block
    std::uint64_t summed = 0;            ///< the keys whose conductances are summed below
    std::size_t nb_oscillators = 0;      ///< that the summed keys reach
    std::vector<unsigned> oscillators{}; ///< their numbers
    std::vector<float> conductances{};   ///< of each of these
    std::vector<int> positions{};        ///< by oscillator: its place in both, or -1
};

/// Makes room for oscillators below `nb_oscs`; the wiring's others stay silent. [setup]
void held_keys_reserve(held_keys& held, int nb_oscs);

/// Adds a key, below max_held_keys, to the block. [audio]
inline void held_keys_add(held_keys& held, unsigned key) noexcept NONBLOCKING {
    held.keys |= std::uint64_t{1} << key;
}

/// Has the tone generator hold what contact 0 of the held keys gives, and forgets the keys. [audio]
void held_keys_register(held_keys& held, const harpmatrix* p_matrix,
                        tonegenerator* p_tg) noexcept NONBLOCKING;
