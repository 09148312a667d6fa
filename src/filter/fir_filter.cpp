#include "filter/fir_filter.h"

filter* fir_filter_create(const char* name, int order, int nb_sample_rate,
                          const int* supported_sample_rate) {
    const auto nb_rates = static_cast<std::size_t>(nb_sample_rate);
    const std::vector<float> taps(static_cast<std::size_t>(order) + 1);
    return new filter{
        .name = name,
        .type = filter_type_fir,
        .order = order,
        .nb_sample_rate = nb_sample_rate,
        .supported_sample_rate{supported_sample_rate, supported_sample_rate + nb_sample_rate},
        .b_coeffs_array{nb_rates, taps},
        .z_buff_array{nb_rates, taps}};
}

void fir_filter_process(filter* p_filter, std::span<const float> src, std::span<float> dest,
                        int /*add*/) noexcept {
    const std::span<const float> taps = p_filter->b_coeffs;
    const std::span<float> line = p_filter->z_buff;
    if (taps.empty())
        return;
    auto newest = static_cast<std::size_t>(p_filter->delay_line_index);
    for (std::size_t n = 0; n < src.size(); ++n) {
        line[newest] = src[n];
        float sum = 0;
        std::size_t slot = newest;
        for (const float tap : taps) {
            sum += line[slot] * tap;
            slot = slot == 0 ? taps.size() - 1 : slot - 1;
        }
        newest = newest + 1 == taps.size() ? 0 : newest + 1;
        dest[n] = sum;
    }
    p_filter->delay_line_index = static_cast<int>(newest);
}
