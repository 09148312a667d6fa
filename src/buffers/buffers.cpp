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
    block_size = std::max(block_size, 0);
    if (block_size == p_buffers->block_size)
        return;
    p_buffers->block_size = block_size;
    for (std::size_t i = 0; i < p_buffers->buffers.size(); ++i) {
        p_buffers->buffers[i].assign(static_cast<std::size_t>(block_size), 0.0f);
        *p_buffers->buffers_ptr[i] = p_buffers->buffers[i];
    }
}
