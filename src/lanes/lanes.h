#pragma once
/// Lanes are a few floats that one instruction works on: four, the vector of every processor that
/// the instrument runs on, so that all of them round alike.

#include "realtime/nonblocking.h"

#include <cstddef>
#include <cstring>

constexpr std::size_t nb_lanes = 4;
constexpr std::size_t column_lanes = 8; ///< vectors of sums that stay in registers all at once

using lanes = float __attribute__((vector_size(nb_lanes * sizeof(float))));

inline lanes lanes_load(const float* values) noexcept NONBLOCKING {
    lanes loaded;
    std::memcpy(&loaded, values, sizeof loaded);
    return loaded;
}

inline void lanes_store(lanes stored, float* values) noexcept NONBLOCKING {
    std::memcpy(values, &stored, sizeof stored);
}

inline lanes lanes_broadcast(float x) noexcept NONBLOCKING { return lanes{x, x, x, x}; }
