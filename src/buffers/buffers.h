#pragma once
/// A set of named work buffers of one block's length. Each is registered with its holder, a span
/// of the caller's that always shows the buffer where it lies now and with its present length, so
/// that rendering code never looks one up. Functions are [setup].

#include "realtime/nonblocking.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

constexpr std::size_t max_nb_buffers = 256; ///< in one set

struct buffers {
    std::string name;
    int nb_buffers = 0;
    int block_size;                               ///< floats in every buffer
    std::vector<std::string> buffers_name{};      ///< for diagnostics
    std::vector<std::vector<float>> buffers{};    ///< in the order of registration, of the largest
                                                  ///< length so far
    std::vector<std::span<float>*> buffers_ptr{}; ///< the holders, which outlive the set
};

/// Returns an empty set of buffers of `block_size` floats (below 0 counts as 0).
[[nodiscard]] buffers* buffers_create(const char* name, int block_size);

void buffers_free(buffers* p_buffers); ///< null is allowed; the holders are not touched

/// Adds a zeroed buffer and shows it to `holder`, which must outlive the set. Returns the buffer,
/// or an empty span, with nothing added, when the set is full. [setup]
std::span<float> buffers_add(buffers* p_buffers, const char* name, std::span<float>* holder);

/// Resizes and zeroes every buffer and updates the holders; an unchanged length touches nothing.
/// [setup]
void buffers_set_block_size(buffers* p_buffers, int block_size);

/// The same within the largest length that was set, to which longer ones are cut. [audio]
void buffers_use_block_size(buffers* p_buffers, int block_size) noexcept NONBLOCKING;
