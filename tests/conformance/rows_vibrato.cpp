/// The vibrato's depth and speed, from how the phase of a held note's partial swings.

#include "conformance/instrument.h"
#include "conformance/rates.h"
#include "probe/signal.h"

#include <cmath>
#include <numbers>

namespace {

using Vibrato = Row;

constexpr double depth_samples = 9; ///< at the base rate, either way
constexpr double speed_hz = 6;
constexpr double seconds = 4;
constexpr int note = 72;

constexpr int points_a_second = 400;

/// The phase of the partial at `hz`, in radians and unwrapped, 400 times a second.
std::vector<float> phase_track(signal_span sound, int rate, double hz) {
    const auto hop = static_cast<std::size_t>(rate / points_a_second);
    const std::size_t window = 4 * hop;
    std::vector<float> track;
    std::complex<double> before = 1;
    double phase = 0;
    for (std::size_t start = 0; start + window <= sound.size(); start += hop) {
        const std::complex<double> now =
            partial(sound.subspan(start, window), rate, hz)
            * std::polar(1.0, -2 * std::numbers::pi * hz * static_cast<double>(start) / rate);
        phase += start == 0 ? 0 : std::arg(now * std::conj(before));
        before = now;
        track.push_back(static_cast<float>(phase));
    }
    return track;
}

/// The track without the line through its ends: no pitch error is left to leak.
void remove_slope(std::vector<float>& track, double track_rate) {
    const auto turn_samples = static_cast<std::size_t>(track_rate / speed_hz);
    const auto whole = (track.size() - 1) / turn_samples * turn_samples;
    const double slope = static_cast<double>(track[whole] - track[0]) / static_cast<double>(whole);
    for (std::size_t i = 0; i < track.size(); ++i)
        track[i] -= static_cast<float>(slope * static_cast<double>(i));
}

TEST_F(Vibrato, DepthAndSpeedAreTheSameAtEachRate) {
    for (const auto& [rate, base_rate] : supported_rates) {
        instrument playing(
            running,
            {.rate = rate,
             .blocks = {512},
             .parameters = {
                 {flute, 0.0f}, {bright, 0.0f}, {brass, 0.0f}, {vibrato, 0.5f}, {bass, 0.0f}}});
        playing.render({note_on(0, note)}, rate / 5);
        const recording sound = playing.render({}, static_cast<long>(seconds * rate));

        const double hz = frequency(sound.right, rate, 440 * std::exp2((note - 57) / 12.0));
        const double hop = rate / points_a_second;
        const double track_rate = rate / hop;
        std::vector<float> track = phase_track(sound.right, rate, hz);
        remove_slope(track, track_rate);

        const double speed = frequency(track, track_rate, speed_hz);
        running.expect(std::fabs(speed - speed_hz) < 0.01,
                       "it swings " + std::to_string(speed) + " times a second");
        const double delay_seconds =
            std::abs(partial(track, track_rate, speed)) / (2 * std::numbers::pi * hz);
        const double depth = delay_seconds * base_rate;
        running.expect(std::fabs(depth - depth_samples) < 0.02 * depth_samples,
                       "its delay swings by " + std::to_string(depth)
                           + " samples of the base rate");
    }
}

/// Off below a half, the manual is dry: the vibrato that runs beside it is not heard.
TEST_F(Vibrato, IsNotHeardBelowAHalf) {
    instrument dry(running, set_up{});
    instrument below(running, {.parameters = {{vibrato, std::nextafter(0.5f, 0.0f)}}});
    const score played{note_on(10, 60)};
    running.expect(dry.render(played, 48000).right == below.render(played, 48000).right,
                   "a vibrato below a half is heard");
}

/// The bass does not pass through it.
TEST_F(Vibrato, LeavesTheBassDry) {
    const set_up apart{.parameters = {{bass_chords, 0.0f}}};
    instrument dry(running, apart);
    instrument swinging(running, apart);
    swinging.set(vibrato, 1.0f);
    const score played{note_on(10, 30)};
    running.expect(dry.render(played, 48000).right == swinging.render(played, 48000).right,
                   "the bass swings");
}

} // namespace
