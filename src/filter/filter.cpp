#include "filter/filter.h"

#include <algorithm>

void filter_free(filter* p_filter) { delete p_filter; }

void filter_set_sampling_rate(filter* p_filter, int sampling_rate) {
    const auto& rates = p_filter->supported_sample_rate;
    const auto found = std::find(rates.begin(), rates.end(), sampling_rate);
    if (found == rates.end()) {
        p_filter->sample_rate = -1;
        return;
    }
    const auto i = static_cast<std::size_t>(found - rates.begin());
    p_filter->sample_rate = sampling_rate;
    p_filter->delay_line_index = 0;
    if (p_filter->type == filter_type_iir)
        p_filter->a_coeffs = p_filter->a_coeffs_array[i];
    p_filter->b_coeffs = p_filter->b_coeffs_array[i];
    p_filter->z_buff = p_filter->z_buff_array[i];
    if (p_filter->callback_compute_coeffs)
        p_filter->callback_compute_coeffs(p_filter, sampling_rate);
}

void filter_set_block_size(filter* p_filter, int block_size) {
    p_filter->block_size = block_size;
    if (p_filter->type == filter_type_fir)
        p_filter->delay_line_index = 0;
    else if (p_filter->nb_cascaded_stages > 0)
        p_filter->p_tmp_buff.assign(static_cast<std::size_t>(std::max(block_size, 0)), 0.0f);
}

void filter_set_b_coeffs(filter* p_filter, const float* b_coeffs) {
    std::copy_n(b_coeffs, p_filter->b_coeffs.size(), p_filter->b_coeffs.begin());
}

void filter_reset_z_buff(filter* p_filter) noexcept {
    std::fill(p_filter->z_buff.begin(), p_filter->z_buff.end(), 0.0f);
}

void filter_dump(const filter*) {}
