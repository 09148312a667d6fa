#include "dsp_stack/dsp_stack.h"

#include <utility>

namespace {

constexpr int no_real_rate = 10;

void broadcast(const std::vector<std::function<void(int)>>& callbacks, int value) {
    for (const auto& callback : callbacks)
        if (callback)
            callback(value);
}

} // namespace

dsp_stack* dsp_stack_create(const char* name) { return new dsp_stack{.name = name}; }

void dsp_stack_free(dsp_stack* p_stack) { delete p_stack; }

int dsp_stack_add(dsp_stack* p_stack, std::function<void(int)> set_sampling_rate,
                  std::function<void(int)> set_block_size, void* object, const char* name) {
    if (p_stack->objs.size() == max_nb_dsp_objs)
        return -1;
    set_sampling_rate(no_real_rate);
    p_stack->callback_sample_rate.push_back(std::move(set_sampling_rate));
    p_stack->callback_block_size.push_back(std::move(set_block_size));
    p_stack->objs.push_back(object);
    p_stack->objs_names.push_back(name);
    ++p_stack->nb_dsp_objs;
    return 0;
}

void dsp_stack_set_sampling_rate(dsp_stack* p_stack, int sampling_rate) {
    broadcast(p_stack->callback_sample_rate, sampling_rate);
}

void dsp_stack_set_block_size(dsp_stack* p_stack, int block_size) {
    broadcast(p_stack->callback_block_size, block_size);
}
