#pragma once
/// A DSP stack passes a new sample rate or block length on to every object registered with it, in
/// the order of registration, without knowing what the objects are. Functions are [setup].

#include <cstddef>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

constexpr std::size_t max_nb_dsp_objs = 256; ///< in one stack

struct dsp_stack {
    std::string name;
    unsigned nb_dsp_objs = 0;
    std::vector<std::function<void(int)>> callback_sample_rate{};
    std::vector<std::function<void(int)>> callback_block_size{}; ///< may be empty
    std::vector<void*> objs{};                                   ///< not owned
    std::vector<const char*> objs_names{};                       ///< the callers' texts, not copied
};

[[nodiscard]] dsp_stack* dsp_stack_create(const char* name);

void dsp_stack_free(dsp_stack* p_stack); ///< null is allowed; the objects are not touched

/// Registers an object whose two callbacks are bound to it already. The object is told the rate 10
/// at once, which is no real one: what it computes from a rate is invalid until the first real one
/// arrives. Returns 0, or -1, with nothing done, when the stack is full.
int dsp_stack_add(dsp_stack* p_stack, std::function<void(int)> set_sampling_rate,
                  std::function<void(int)> set_block_size, void* object, const char* name);

/// The same with the functions of the object's own module; `set_block_size` may be null.
template <typename Object>
int dsp_stack_add(dsp_stack* p_stack,
                  std::type_identity_t<void (*)(Object*, int)> set_sampling_rate,
                  std::type_identity_t<void (*)(Object*, int)> set_block_size, Object* object,
                  const char* name) {
    std::function<void(int)> block_size_callback;
    if (set_block_size)
        block_size_callback = [=](int block_size) { set_block_size(object, block_size); };
    return dsp_stack_add(
        p_stack, [=](int rate) { set_sampling_rate(object, rate); }, block_size_callback,
        static_cast<void*>(object), name);
}

void dsp_stack_set_sampling_rate(dsp_stack* p_stack, int sampling_rate);

void dsp_stack_set_block_size(dsp_stack* p_stack, int block_size);
