#include "filter/iir_filter.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace {

/// Calls `loop` with the two choices as compile-time constants, so that its body has no test.
template <typename Loop>
void choose(bool has_gain, bool adds, Loop loop) {
    if (has_gain)
        adds ? loop(std::true_type{}, std::true_type{}) : loop(std::true_type{}, std::false_type{});
    else
        adds ? loop(std::false_type{}, std::true_type{})
             : loop(std::false_type{}, std::false_type{});
}

using section_process = void (*)(float*, const float*, const float*, std::span<const float>,
                                 std::span<float>, int, float) noexcept NONBLOCKING;

} // namespace

filter* iir_filter_create(const char* name, int order, unsigned nb_cascaded_stages,
                          int nb_sample_rate, const int* supported_sample_rate) {
    const auto nb_rates = static_cast<std::size_t>(nb_sample_rate);
    const auto nb_coeffs = static_cast<std::size_t>(order) + 1;
    const std::vector<float> coeffs(nb_coeffs);
    const std::vector<float> state(nb_coeffs * (nb_cascaded_stages + 1));
    return new filter{
        .name = name,
        .type = filter_type_iir,
        .order = order,
        .nb_sample_rate = nb_sample_rate,
        .supported_sample_rate{supported_sample_rate, supported_sample_rate + nb_sample_rate},
        .a_coeffs_array{nb_rates, coeffs},
        .b_coeffs_array{nb_rates, coeffs},
        .z_buff_array{nb_rates, state},
        .nb_cascaded_stages = nb_cascaded_stages};
}

void iir_filter_set_a_coeffs(filter* p_filter, const float* a_coeffs) {
    std::copy_n(a_coeffs, p_filter->a_coeffs.size(), p_filter->a_coeffs.begin());
}

void iir_filter_set_gain(filter* p_filter, float gain) { p_filter->gain = gain; }

void iir_process_first_order(float* z, const float* a, const float* b, std::span<const float> src,
                             std::span<float> dest, int add, float gain) noexcept {
    choose(gain != 1.0f, add != 0, [=](auto has_gain, auto adds) {
        const float a1 = a[1];
        const float b0 = b[0];
        const float b1 = b[1];
        float z1 = z[1];
        for (std::size_t n = 0; n < src.size(); ++n) {
            const float w = src[n] - a1 * z1;
            float y = b0 * w + b1 * z1;
            if constexpr (has_gain)
                y *= gain;
            dest[n] = adds ? dest[n] + y : y;
            z1 = w;
        }
        z[0] = z[1] = z1;
    });
}

void iir_process_second_order(float* z, const float* a, const float* b, std::span<const float> src,
                              std::span<float> dest, int add, float gain) noexcept {
    choose(gain != 1.0f, add != 0, [=](auto has_gain, auto adds) {
        const float a1 = a[1];
        const float a2 = a[2];
        const float b0 = b[0];
        const float b1 = b[1];
        const float b2 = b[2];
        float z1 = z[1];
        float z2 = z[2];
        for (std::size_t n = 0; n < src.size(); ++n) {
            const float w = (src[n] - a1 * z1) - a2 * z2;
            float y = (b0 * w + b1 * z1) + b2 * z2;
            if constexpr (has_gain)
                y *= gain;
            dest[n] = adds ? dest[n] + y : y;
            z2 = z1;
            z1 = w;
        }
        z[0] = z[1] = z1;
        z[2] = z2;
    });
}

bool iir_filter_settle(filter* p_filter, float inaudible) noexcept {
    const auto is_inaudible = [=](float z) { return std::abs(z) < inaudible; };
    if (!std::ranges::all_of(p_filter->z_buff, is_inaudible))
        return false;
    std::ranges::fill(p_filter->z_buff, 0.0f);
    return true;
}

void iir_filter_process(filter* p_filter, std::span<const float> src, std::span<float> dest,
                        int add) noexcept {
    if (p_filter->order < 1 || p_filter->order > 2 || p_filter->b_coeffs.empty())
        return;
    const section_process process =
        p_filter->order == 1 ? iir_process_first_order : iir_process_second_order;
    const float* a = p_filter->a_coeffs.data();
    const float* b = p_filter->b_coeffs.data();
    float* z = p_filter->z_buff.data();
    const unsigned nb_stages = p_filter->nb_cascaded_stages;
    if (nb_stages == 0) {
        process(z, a, b, src, dest, add, p_filter->gain);
        return;
    }

    if (src.size() > p_filter->p_tmp_buff.size())
        return;
    const auto between = std::span(p_filter->p_tmp_buff).first(src.size());
    const int section_state = p_filter->order + 1;
    process(z, a, b, src, between, 0, p_filter->gain);
    for (unsigned k = 1; k < nb_stages; ++k)
        process(z += section_state, a, b, between, between, 0, p_filter->gain);
    process(z + section_state, a, b, between, dest, add, p_filter->gain);
}
