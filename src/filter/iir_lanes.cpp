#include "filter/iir_lanes.h"

#include "lanes/lanes.h"

namespace {

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

template <bool has_gain>
lanes run_first_order(sections& s, lanes x) {
    const lanes w = x - s.a1 * s.z1;
    const lanes y = s.b0 * w + s.b1 * s.z1;
    s.z1 = w;
    return has_gain ? y * s.gain : y;
}

template <int... indices>
lanes shuffle(lanes one, lanes other) {
    return __builtin_shufflevector(one, other, indices...);
}

/// The sums over the lanes of four frames, in the order of the lanes.
lanes sum_of_lanes(const lanes (&y)[nb_lanes]) {
    const lanes low01 = shuffle<0, 4, 1, 5>(y[0], y[1]), high01 = shuffle<2, 6, 3, 7>(y[0], y[1]);
    const lanes low23 = shuffle<0, 4, 1, 5>(y[2], y[3]), high23 = shuffle<2, 6, 3, 7>(y[2], y[3]);
    return ((shuffle<0, 1, 4, 5>(low01, low23) + shuffle<2, 3, 6, 7>(low01, low23))
            + shuffle<0, 1, 4, 5>(high01, high23))
           + shuffle<2, 3, 6, 7>(high01, high23);
}

/// The parallel filters over four frames.
lanes run_parallel(sections& parallel, lanes x) {
    const lanes y[] = {run_second_order(parallel, shuffle<0, 0, 0, 0>(x, x)),
                       run_second_order(parallel, shuffle<1, 1, 1, 1>(x, x)),
                       run_second_order(parallel, shuffle<2, 2, 2, 2>(x, x)),
                       run_second_order(parallel, shuffle<3, 3, 3, 3>(x, x))};
    return sum_of_lanes(y);
}

/// The two cascades over four frames, which `first` and `second` hold.
template <bool has_gain>
void run_cascades(sections (&stage)[2], lanes& first, lanes& second) {
    const lanes low = shuffle<0, 4, 1, 5>(first, second), high = shuffle<2, 6, 3, 7>(first, second);
    const auto run = [&stage](lanes x) {
        return run_first_order<has_gain>(stage[1], run_first_order<has_gain>(stage[0], x));
    };
    const lanes z0 = run(low), z1 = run(shuffle<2, 3, 2, 3>(low, low));
    const lanes z2 = run(high), z3 = run(shuffle<2, 3, 2, 3>(high, high));
    const lanes z01 = shuffle<0, 4, 1, 5>(z0, z1), z23 = shuffle<0, 4, 1, 5>(z2, z3);
    first = shuffle<0, 1, 4, 5>(z01, z23);
    second = shuffle<2, 3, 6, 7>(z01, z23);
}

/// Blocks of whole groups of four frames. The cascades are a group behind the parallel filters, so
/// that neither waits for the other.
template <bool has_gain>
void run_groups(sections& parallel, sections (&stage)[2], std::span<const float> src,
                std::span<float> sum, const iir_cascade_run& first, const iir_cascade_run& second) {
    const auto cascade = [&](std::size_t n) {
        lanes x = lanes_load(&first.src[n]), y = lanes_load(&second.src[n]);
        run_cascades<has_gain>(stage, x, y);
        lanes_store(x, &first.dest[n]);
        lanes_store(y, &second.dest[n]);
    };
    lanes_store(run_parallel(parallel, lanes_load(src.data())), sum.data());
    for (std::size_t n = nb_lanes; n < src.size(); n += nb_lanes) {
        lanes_store(run_parallel(parallel, lanes_load(&src[n])), &sum[n]);
        cascade(n - nb_lanes);
    }
    cascade(src.size() - nb_lanes);
}

template <bool has_gain>
void run_frames(sections& parallel, sections (&stage)[2], std::span<const float> src,
                std::span<float> sum, const iir_cascade_run& first, const iir_cascade_run& second,
                std::size_t begin) {
    for (std::size_t n = begin; n < src.size(); ++n) {
        const lanes y = run_second_order(parallel, lanes_broadcast(src[n]));
        sum[n] = ((y[0] + y[1]) + y[2]) + y[3];
        const lanes x{first.src[n], second.src[n]};
        const lanes z = run_first_order<has_gain>(stage[1], run_first_order<has_gain>(stage[0], x));
        first.dest[n] = z[0];
        second.dest[n] = z[1];
    }
}

template <bool has_gain>
void run(sections& parallel, sections (&stage)[2], std::span<const float> src, std::span<float> sum,
         const iir_cascade_run& first, const iir_cascade_run& second) {
    const std::size_t in_groups = src.size() - src.size() % nb_lanes;
    if (in_groups > 0)
        run_groups<has_gain>(parallel, stage, src.first(in_groups), sum, first, second);
    run_frames<has_gain>(parallel, stage, src, sum, first, second, in_groups);
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

    if (first.p_filter->gain != 1.0f || second.p_filter->gain != 1.0f)
        run<true>(parallel, stage, src, sum, first, second);
    else
        run<false>(parallel, stage, src, sum, first, second);

    for (std::size_t lane = 0; lane < filters.size(); ++lane)
        parallel.store(lane, *filters[lane], 0);
    for (std::size_t k = 0; k < 2; ++k) {
        stage[k].store(0, *first.p_filter, k);
        stage[k].store(1, *second.p_filter, k);
    }
}
