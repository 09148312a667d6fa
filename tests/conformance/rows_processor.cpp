/// What the arithmetic comes to when nothing sounds any more.

#include "conformance/instrument.h"
#include "conformance/tables.h"
#include "probe/signal.h"

#include <algorithm>
#include <cmath>
#include <xmmintrin.h>

namespace {

constexpr unsigned usual = 0x1F80; ///< every exception masked, rounding to nearest, denormals on

/// Silence after a note is exact: what decays, by 26 dB a second in the slowest filter, passes the
/// smallest normal number, at -759 dB, after 30 s and is 0 from there on.
void decays_to_zero(trial& running) {
    constexpr std::size_t second = 48000;
    _mm_setcsr(usual);
    instrument playing(running, {.rate = second, .blocks = {512}});
    const recording sound = playing.render(
        {note_on(0, 60), note_on(0, 26), note_off(4800, 60), note_off(4800, 26)}, 40 * second);
    _mm_setcsr(usual);
    for (const signal_span output : {signal_span(sound.right), signal_span(sound.left)}) {
        const auto nb_denormals = std::ranges::count_if(
            output, [](float sample) { return std::fpclassify(sample) == FP_SUBNORMAL; });
        running.expect(nb_denormals == 0, std::to_string(nb_denormals) + " samples are denormal");
        running.expect(peak(output.last(second)) == 0, "the last second is not silent");
    }
}

} // namespace

table processor_rows() { return {{"processor/decays to zero", decays_to_zero}}; }
