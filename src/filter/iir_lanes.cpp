#include "filter/iir_lanes.h"

namespace {

using lanes = float __attribute__((vector_size(iir_nb_lanes * sizeof(float))));

lanes broadcast(float x) { return lanes{x, x, x, x}; }

/// Sections side by side. A first-order section is a second-order one whose a2, b2 and z2 are 0:
/// its sums gain a zero and stay what they are. A lane without a filter is all zeros.
struct sections {
    lanes a1{}, a2{}, b0{}, b1{}, b2{}, gain{}, z1{}, z2{};

    void load(std::size_t lane, const filter& f, std::size_t stage) {
        const float* z = &f.z_buff[stage * static_cast<std::size_t>(f.order + 1)];
        a1[lane] = f.a_coeffs[1];
        b0[lane] = f.b_coeffs[0];
        b1[lane] = f.b_coeffs[1];
        z1[lane] = z[1];
        gain[lane] = f.gain;
        if (f.order == 2) {
            a2[lane] = f.a_coeffs[2];
            b2[lane] = f.b_coeffs[2];
            z2[lane] = z[2];
        }
    }

    void store(std::size_t lane, filter& f, std::size_t stage) const {
        float* z = &f.z_buff[stage * static_cast<std::size_t>(f.order + 1)];
        z[0] = z[1] = z1[lane];
        if (f.order == 2)
            z[2] = z2[lane];
    }
};

lanes run_second_order(sections& s, lanes x) {
    const lanes w = (x - s.a1 * s.z1) - s.a2 * s.z2;
    const lanes y = (s.b0 * w + s.b1 * s.z1) + s.b2 * s.z2;
    s.z2 = s.z1;
    s.z1 = w;
    return y * s.gain;
}

lanes run_first_order(sections& s, lanes x) {
    const lanes w = x - s.a1 * s.z1;
    const lanes y = s.b0 * w + s.b1 * s.z1;
    s.z1 = w;
    return y * s.gain;
}

} // namespace

void iir_filters_process(std::span<filter* const> filters, std::span<const float> src,
                         std::span<float> sum, const iir_cascade_run& first,
                         const iir_cascade_run& second) noexcept {
    sections parallel;
    for (std::size_t lane = 0; lane < filters.size(); ++lane)
        parallel.load(lane, *filters[lane], 0);
    // The two cascades are two lanes. As four lanes of one vector, the further sections a frame
    // behind, they took half as long again: then the first sections wait for the further ones.
    sections stage[2];
    for (std::size_t k = 0; k < 2; ++k) {
        stage[k].load(0, *first.p_filter, k);
        stage[k].load(1, *second.p_filter, k);
    }

    for (std::size_t n = 0; n < src.size(); ++n) {
        const lanes y = run_second_order(parallel, broadcast(src[n]));
        sum[n] = ((y[0] + y[1]) + y[2]) + y[3];
        const lanes x{first.src[n], second.src[n]};
        const lanes z = run_first_order(stage[1], run_first_order(stage[0], x));
        first.dest[n] = z[0];
        second.dest[n] = z[1];
    }

    for (std::size_t lane = 0; lane < filters.size(); ++lane)
        parallel.store(lane, *filters[lane], 0);
    for (std::size_t k = 0; k < 2; ++k) {
        stage[k].store(0, *first.p_filter, k);
        stage[k].store(1, *second.p_filter, k);
    }
}
