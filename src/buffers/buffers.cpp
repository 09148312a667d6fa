#include "buffers/buffers.h"

#include <algorithm>

buffers* buffers_create(const char* name, int block_size) {
    return new buffers{.name = name, .block_size = std::max(block_size, 0)};
}

void buffers_free(buffers* p_buffers) { delete p_buffers; }

std::span<float> buffers_add(buffers* p_buffers, const char* name, std::span<float>* holder) {
    if (p_buffers->buffers.size() == max_nb_buffers)
        return {};
    p_buffers->buffers.emplace_back(static_cast<std::size_t>(p_buffers->block_size));
    p_buffers->buffers_name.emplace_back(name);
    p_buffers->buffers_ptr.push_back(holder);
    ++p_buffers->nb_buffers;
    return *holder = p_buffers->buffers.back();
}

void buffers_set_block_size(buffers* p_buffers, int block_size) {
    const auto length = static_cast<std::size_t>(std::max(block_size, 0));
    for (std::vector<float>& buffer : p_buffers->buffers)
        if (buffer.size() < length)
            buffer.resize(length);
    buffers_use_block_size(p_buffers, block_size);
}

void buffers_use_block_size(buffers* p_buffers, int block_size) noexcept {
    block_size = std::max(block_size, 0);
    if (block_size == p_buffers->block_size)
        return;
    p_buffers->block_size = block_size;
    for (std::size_t i = 0; i < p_buffers->buffers.size(); ++i) {
        const std::span<float> buffer = p_buffers->buffers[i];
        const auto used =
            buffer.first(std::min(buffer.size(), static_cast<std::size_t>(block_size)));
        std::ranges::fill(used, 0.0f);
        *p_buffers->buffers_ptr[i] = used;
    }
}
