#include "tonegenerator/whole_curve.h"

#include "lanes/lanes.h"

namespace {

/// A column of `nb` lanes from frame `start` of the block on, which lies at `samples` and `dest`.
template <std::size_t nb>
void apply_column(std::span<const whole_curve> curves, std::size_t start, float gain,
                  const float* samples, float* dest) {
    lanes sums[nb]{};
    for (const whole_curve& curve : curves)
        for (std::size_t lane = 0; lane < nb; ++lane)
            sums[lane] += lanes_load(curve.table + start + lane * nb_lanes) * curve.conductance;
    for (std::size_t lane = 0; lane < nb; ++lane)
        lanes_store(lanes_load(samples + lane * nb_lanes) * (sums[lane] + gain),
                    dest + lane * nb_lanes);
}

} // namespace

void whole_curves_apply(const whole_curves& whole, std::size_t start, float gain,
                        const float* samples, std::span<float> dest) noexcept {
    const auto curves = std::span(whole.curves).first(whole.nb_curves);
    std::size_t i = 0;
    for (; i + column_lanes * nb_lanes <= dest.size(); i += column_lanes * nb_lanes)
        apply_column<column_lanes>(curves, start + i, gain, samples + i, &dest[i]);
    for (; i + nb_lanes <= dest.size(); i += nb_lanes)
        apply_column<1>(curves, start + i, gain, samples + i, &dest[i]);
    for (; i < dest.size(); ++i) { // the tables may end here
        float sum = 0.0f;
        for (const whole_curve& curve : curves)
            sum += curve.table[start + i] * curve.conductance;
        dest[i] = samples[i] * (sum + gain);
    }
}
