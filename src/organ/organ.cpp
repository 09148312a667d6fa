#include "organ/organ.h"

#include "organ/fast_math.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <system_error>
#include <utility>

namespace {

constexpr const char* seed_variable = "TINDELWAX_SEED";

template <typename Element>
std::vector<Element> empty_slots(int count) {
    return std::vector<Element>(static_cast<std::size_t>(count));
}

void follow_block_size(organ* p_organ, int nframes) noexcept NONBLOCKING {
    if (nframes <= p_organ->max_block_size)
        return organ_use_block_size(p_organ, nframes);
    // Who hands over more than was ever announced waits until there is room. The player never does.
    NONBLOCKING_UNCHECKED_BEGIN
    organ_set_block_size(p_organ, nframes);
    NONBLOCKING_UNCHECKED_END
}

/// At rest an engine touches little memory: hundreds of them share a processor's caches.
bool rest(organ* p_organ, std::uint32_t nframes) noexcept NONBLOCKING {
    if (!p_organ->is_resting || !p_organ->rest_callback || !p_organ->rest_callback(nframes))
        return false;
    p_organ->rested_frames += nframes;
    return true;
}

void render(organ* p_organ, std::span<float> out_r, std::span<float> out_l) noexcept NONBLOCKING {
    const int nframes = static_cast<int>(out_r.size());
    follow_block_size(p_organ, nframes);
    const std::uint32_t rested_frames = std::exchange(p_organ->rested_frames, 0);
    for (const auto& p_keybed : p_organ->p_keybeds) {
        p_keybed->global_index += rested_frames;
        keybed_next(p_keybed.get(), nframes);
    }
    if (p_organ->process_callback) {
        p_organ->process_callback(p_organ, out_r, out_l);
        return;
    }
    std::ranges::fill(out_r, 0.0f);
    std::ranges::fill(out_l, 0.0f);
}

} // namespace

std::optional<std::uint32_t> organ_asked_seed() {
    const char* text = std::getenv(seed_variable);
    std::uint32_t number = 0;
    if (!text || std::from_chars(text, text + std::strlen(text), number).ec != std::errc{})
        return std::nullopt;
    return number;
}

organ* organ_create(const char* name, int nb_keybeds, int nb_tonegenerators, int nb_harpmatrixes,
                    int nb_filters, std::optional<std::uint32_t> seed) {
    if (!seed)
        seed = organ_asked_seed();
    if (!has_sse()) {
        dump_cpuid();
        std::fputs("Error SSE not detected !!!\nAborting ...\n", stderr);
        std::exit(1);
    }
    return new organ{
        .name = name,
        .random{seed.value_or(static_cast<std::uint32_t>(std::time(nullptr)))},
        .p_buffers = std::unique_ptr<buffers>(buffers_create("organ_buffers", 0)),
        .nb_harpmatrixes = nb_harpmatrixes,
        .p_harpmatrixes = empty_slots<std::unique_ptr<harpmatrix>>(nb_harpmatrixes),
        .nb_tonegenerators = nb_tonegenerators,
        .p_tonegenerators = empty_slots<std::unique_ptr<tonegenerator>>(nb_tonegenerators),
        .nb_keybeds = nb_keybeds,
        .p_keybeds = empty_slots<std::unique_ptr<keybed>>(nb_keybeds),
        .nb_filters = nb_filters,
        .p_filters = empty_slots<std::unique_ptr<filter>>(nb_filters),
        .p_filters_in = empty_slots<float*>(nb_filters),
        .p_filters_out = empty_slots<float*>(nb_filters),
        .p_filters_add = empty_slots<int>(nb_filters),
        .p_dsp_stack = std::unique_ptr<dsp_stack>(dsp_stack_create("ORGAN DEFAULT DSP STACK"))};
}

void organ_free(organ* p_organ) { delete p_organ; }

void organ_set_block_size(organ* p_organ, int block_size) {
    p_organ->max_block_size = p_organ->block_size = block_size;
    dsp_stack_set_block_size(p_organ->p_dsp_stack.get(), block_size);
    for (const auto& p_keybed : p_organ->p_keybeds)
        keybed_set_block_size(p_keybed.get(), block_size);
    for (const auto& p_tonegenerator : p_organ->p_tonegenerators)
        tonegenerator_set_block_size(p_tonegenerator.get(), block_size);
    buffers_set_block_size(p_organ->p_buffers.get(), block_size);
    if (p_organ->set_block_size_callback)
        p_organ->set_block_size_callback(block_size);
}

void organ_use_block_size(organ* p_organ, int block_size) noexcept {
    if (block_size == p_organ->block_size)
        return;
    p_organ->block_size = block_size;
    for (const auto& p_keybed : p_organ->p_keybeds)
        keybed_set_block_size(p_keybed.get(), block_size);
    for (const auto& p_tonegenerator : p_organ->p_tonegenerators)
        tonegenerator_use_block_size(p_tonegenerator.get(), block_size);
    buffers_use_block_size(p_organ->p_buffers.get(), block_size);
}

void organ_set_sampling_rate(organ* p_organ, int sampling_rate) {
    if (sampling_rate < 1)
        return;
    p_organ->sampling_rate = sampling_rate;
    p_organ->is_resting = false;
    dsp_stack_set_sampling_rate(p_organ->p_dsp_stack.get(), sampling_rate);
    for (const auto& p_keybed : p_organ->p_keybeds)
        keybed_set_sampling_rate(p_keybed.get(), sampling_rate);
    for (const auto& p_tonegenerator : p_organ->p_tonegenerators)
        tonegenerator_set_sampling_rate(p_tonegenerator.get(), sampling_rate);
    if (p_organ->set_sampling_rate_callback)
        p_organ->set_sampling_rate_callback(sampling_rate);
}

void organ_process(organ* p_organ, std::span<float> out_r, std::span<float> out_l) noexcept {
    if (out_r.empty())
        return;
    flush_denormals();
    const auto nframes = static_cast<std::uint32_t>(out_r.size());
    if (rest(p_organ, nframes)) {
        std::ranges::fill(out_r, 0.0f);
        std::ranges::fill(out_l, 0.0f);
    } else {
        render(p_organ, out_r, out_l);
    }
    for (const auto& p_tonegenerator : p_organ->p_tonegenerators)
        p_tonegenerator->global_phase_index += nframes;
}

void organ_panic(organ* p_organ) noexcept {
    for (const auto& p_keybed : p_organ->p_keybeds)
        keybed_reset(p_keybed.get());
}

void organ_silence(organ* p_organ) noexcept {
    organ_panic(p_organ);
    for (const auto& p_filter : p_organ->p_filters)
        filter_reset_z_buff(p_filter.get());
    if (p_organ->silence_callback)
        p_organ->silence_callback();
}

void organ_set_output_mode(organ* p_organ, int mode) {
    if (p_organ->set_output_mode_callback)
        p_organ->set_output_mode_callback(p_organ, mode);
}

void organ_set_default_values(organ* p_organ) {
    control* p_control = p_organ->p_control;
    for (std::size_t i = 0; i < p_control->parameters.size(); ++i)
        control_set_parameter(p_control, static_cast<int>(i),
                              p_control->parameters[i]->default_value);
}

void organ_add_filters_to_dsp_stack(organ* p_organ) {
    for (const auto& p_filter : p_organ->p_filters)
        dsp_stack_add(p_organ->p_dsp_stack.get(), filter_set_sampling_rate, filter_set_block_size,
                      p_filter.get(), p_filter->name.c_str());
}
