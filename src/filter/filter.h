#pragma once
/// A filter, recursive (IIR) or not (FIR), with one coefficient set and one state for each of a
/// short list of sample rates: all sets are designed ahead, and a change of rate selects one.

#include "realtime/nonblocking.h"

#include <functional>
#include <span>
#include <string>
#include <vector>

constexpr unsigned filter_type_iir = 0;
constexpr unsigned filter_type_fir = 1;

struct filter {
    std::string name;
    unsigned type;
    int order;            ///< IIR: 1 or 2, of one section; FIR: number of taps - 1
    int sample_rate = -1; ///< Hz; -1 at creation and while the rate asked for last has no set
    int block_size = 0;   ///< most frames of one process call
    int nb_sample_rate;
    std::vector<int> supported_sample_rate;
    std::vector<std::vector<float>> a_coeffs_array{}; ///< a rate: a0 to a(order); none for FIR
    std::span<float> a_coeffs{};                      ///< the selected set, here and below
    std::vector<std::vector<float>> b_coeffs_array;   ///< a rate: b0 to b(order)
    std::span<float> b_coeffs{};
    std::vector<std::vector<float>> z_buff_array; ///< a rate: IIR z0 to z(order) of each section
                                                  ///< in turn; FIR the delay line
    std::span<float> z_buff{};
    int delay_line_index = 0;        ///< FIR: slot of the next input sample
    unsigned nb_cascaded_stages = 0; ///< IIR: identical sections after the first
    std::vector<float> p_tmp_buff{}; ///< IIR with further sections: block_size floats between them
    float gain = 1.0f;               ///< applied by every section of an IIR filter
    std::function<void(filter*, int)> callback_compute_coeffs{}; ///< told each rate selected
};

void filter_free(filter* p_filter); ///< null is allowed [setup]

/// Selects the set of a supported rate; its state is what it was when the rate was last in use. Any
/// other rate sets sample_rate to -1 and leaves the set in use selected. [setup]
void filter_set_sampling_rate(filter* p_filter, int sampling_rate);

/// Makes room for blocks of at most so many frames. [setup]
void filter_set_block_size(filter* p_filter, int block_size);

/// Copies order + 1 values into the selected set; without one, nothing. [setup]
void filter_set_b_coeffs(filter* p_filter, const float* b_coeffs);

/// Zeroes the selected state. [audio]
void filter_reset_z_buff(filter* p_filter) noexcept NONBLOCKING;

/// An anchor for diagnostics; does nothing. [setup]
void filter_dump(const filter* p_filter);
