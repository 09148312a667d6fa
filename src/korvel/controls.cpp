#include "korvel/controls.h"

#include "filter/iir_design.h"

namespace {

constexpr auto relaxed = std::memory_order_relaxed;

constexpr float contour_resistor = 6000.0f;        ///< ohms, in series with the potentiometer
constexpr float contour_potentiometer = 100000.0f; ///< ohms
constexpr float contour_capacitor = 2.2e-9f;       ///< farads

/// Neither bound holds for what is not a number: `mode` stays.
int split_mode(float value, int mode) {
    const double position = static_cast<double>(value);
    if (position <= 1.0 / 3)
        return output_bass_right;
    if (position < 2.0 / 3)
        return output_bass_left;
    if (position >= 2.0 / 3)
        return output_mixed;
    return mode;
}

/// Stores the value, and what follows from it through `publish`. Where several threads set it at
/// once, each looks after publishing whether its value still stands, and whoever replaces a value
/// sees all that was published for it: the later one wins whole.
template <typename Publish>
void set_whole(std::atomic<float>& stored, float value, Publish publish) {
    stored.exchange(value, std::memory_order_acq_rel);
    do
        publish(value);
    while (!stored.compare_exchange_strong(value, value, std::memory_order_acq_rel));
}

} // namespace

float contour_filter_get(const korvel* p_korvel) noexcept {
    return p_korvel->contour_filter_ratio.load(relaxed);
}

void contour_filter_set(korvel* p_korvel, float value) noexcept {
    set_whole(p_korvel->contour_filter_ratio, value, [p_korvel](float ratio) {
        const float resistance = ratio * contour_potentiometer + contour_resistor;
        for (std::size_t i = 0; i < s_rate.size(); ++i)
            if (const auto c =
                    iir_rc_first_order_coeffs(resistance, contour_capacitor, 0, s_rate[i]))
                p_korvel->contour[i].store({.b0 = c->b0, .a1 = c->a1}, relaxed);
    });
}

float split_get_value(const korvel* p_korvel) noexcept {
    return p_korvel->split_output.load(relaxed);
}

void split_set_value(korvel* p_korvel, float value) noexcept {
    set_whole(p_korvel->split_output, value, [p_korvel](float position) {
        const int mode = p_korvel->sound_output_mode.load(relaxed);
        p_korvel->sound_output_mode.store(split_mode(position, mode), relaxed);
    });
}

std::string split_get_display(const korvel* p_korvel) {
    switch (split_mode(p_korvel->split_output.load(relaxed), output_mixed)) {
    case output_bass_right:
        return "BassR";
    case output_bass_left:
        return "BassL";
    default:
        return "MixLR";
    }
}
