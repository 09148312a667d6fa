/// What the stops, the contour and the volumes make of the manual.

#include "conformance/closed_form.h"
#include "conformance/instrument.h"
#include "conformance/rates.h"
#include "probe/signal.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

using Voice = Row;

constexpr int voiced_notes[]{36, 48, 60, 72};
constexpr double bound_db = 0.1;

/// Seeds scatter the level by less than 1 dB; a factor of the square root of 2 fails with each.
constexpr double level_bound_db = 2;

double rms(signal_span sound) {
    const double energy = std::inner_product(sound.begin(), sound.end(), sound.begin(), 0.0);
    return std::sqrt(energy / static_cast<double>(sound.size()));
}

double lowest_hz(int note) { return 440 * std::exp2((note - 57) / 12.0); }

using parameters = std::vector<std::pair<VstInt32, float>>;

parameters only(VstInt32 stop) {
    parameters settings{{flute, 0.0f}, {bright, 0.0f}, {brass, 0.0f}, {mellow, 0.0f}};
    settings[static_cast<std::size_t>(stop)].second = 1.0f;
    return settings;
}

/// Half a second of a note, after a tenth.
std::vector<float> sustained(trial& running, int rate, const parameters& settings, int note) {
    instrument playing(running, {.rate = rate, .blocks = {512}, .parameters = settings});
    playing.render({note_on(0, note)}, rate / 10);
    return playing.render({}, rate / 2).right;
}

/// The level of the note's lowest partial: the seed, and with it the table, is the same for all.
double level(trial& running, int rate, const parameters& settings, int note) {
    const std::vector<float> sound = sustained(running, rate, settings, note);
    return std::abs(partial(sound, rate, frequency(sound, rate, lowest_hz(note))));
}

void expect_ratio(const trial& running, double got, double wanted, const std::string& what) {
    running.expect(std::fabs(to_db(got / wanted)) <= bound_db,
                   what + " is " + std::to_string(to_db(got)) + " dB, wanted "
                       + std::to_string(to_db(wanted)));
}

TEST_F(Voice, StopsFollowTheirDesign) {
    const struct {
        const char* name;
        VstInt32 stop;
        double (*gain)(double hz, double rate);
    } cases[]{{"Flute against Mellow", flute, flute_gain},
              {"Bright against Mellow", bright, bright_gain},
              {"Brass against Mellow", brass, brass_gain}};
    for (const auto& [name, stop, gain] : cases)
        for (const auto& [rate, base_rate] : supported_rates)
            for (const int note : voiced_notes) {
                running.doing = name;
                const double got = level(running, rate, only(stop), note)
                                   / level(running, rate, only(mellow), note);
                const double hz = lowest_hz(note);
                expect_ratio(running, got, gain(hz, rate) / mellow_gain(hz, rate),
                             "note " + std::to_string(note));
            }
}

/// Each stop's output joins at unit weight, whatever its value above a half.
TEST_F(Voice, StopsAddUp) {
    std::vector<float> sum(24000, 0.0f);
    for (const VstInt32 stop : {flute, bright, brass, mellow}) {
        parameters settings = only(stop);
        settings[static_cast<std::size_t>(stop)].second = 0.5f;
        const std::vector<float> part = sustained(running, 48000, settings, 55);
        std::ranges::transform(sum, part, sum.begin(), std::plus<>());
    }
    const std::vector<float> all = sustained(running, 48000, {}, 55);
    running.frame = static_cast<long>(worst_index(all, sum));
    running.expect(difference_db(all, sum) < -75,
                   "four stops are not the sum of each: " + std::to_string(difference_db(all, sum))
                       + " dB");
}

TEST_F(Voice, StopsBelowAHalfAreOff) {
    const float off = std::nextafter(0.5f, 0.0f);
    const parameters none{{flute, off}, {bright, off}, {brass, off}, {mellow, off}};
    running.expect(peak(sustained(running, 48000, none, 55)) == 0,
                   "the manual sounds without a stop");
    running.expect(peak(sustained(running, 48000, none, 30)) > 1e-3,
                   "the bass needs a stop to sound");
}

constexpr float default_contour = 0.1f;

/// A cutoff above half the rate leaves the filter as it was: the brightest 22050 Hz cannot have.
double heard_contour(float value, int rate) {
    return static_cast<double>(rate == 22050 ? std::max(value, default_contour) : value);
}

TEST_F(Voice, ContourFollowsItsDesign) {
    for (const auto& [rate, base_rate] : supported_rates)
        for (const float value : {0.0f, 0.35f, 1.0f})
            for (const int note : {48, 60, 72}) {
                const double got = level(running, rate, {{contour, value}}, note)
                                   / level(running, rate, {{contour, default_contour}}, note);
                const double hz = lowest_hz(note);
                const double wanted = contour_gain(heard_contour(value, rate), hz, rate)
                                      / contour_gain(double{default_contour}, hz, rate);
                expect_ratio(running, got, wanted,
                             "contour " + std::to_string(value) + ", note " + std::to_string(note));
            }
}

/// Each instrument's parts scatter about the design, so the seeds do not agree.
TEST_F(Voice, Levels) {
    const struct {
        const char* name;
        int note;
        double wanted; ///< RMS at the volumes of a new instrument
    } cases[]{{"manual", 60, 0.0745}, {"bass", 30, 0.514}};
    for (const auto& [name, note, wanted] : cases)
        for (unsigned i = 0; i < 8; ++i) {
            running.doing = name;
            running.seed = begun.seed + i;
            const std::vector<float> sound = sustained(running, 48000, {{bass_chords, 0.0f}}, note);
            const double db = to_db(rms(sound) / wanted);
            running.expect(std::fabs(db) < level_bound_db,
                           "it is " + std::to_string(db) + " dB off its level");
        }
}

TEST_F(Voice, VolumesAreLinearGains) {
    for (const auto& [parameter, note] : {std::pair{volume, 60}, {bass, 30}}) {
        parameters settings{{bass_chords, 0.0f}, {parameter, 1.0f}};
        const std::vector<float> full = sustained(running, 48000, settings, note);
        for (const float value : {0.0f, 0.01f, 0.1f, 0.5f, 0.77f, 2.0f}) {
            settings.back().second = value;
            std::vector<float> wanted(full);
            for (float& sample : wanted)
                sample *= value;
            const std::vector<float> got = sustained(running, 48000, settings, note);
            const bool holds = value == 0.0f ? peak(got) == 0 : difference_db(got, wanted) < -120;
            running.expect(holds, "parameter " + std::to_string(parameter) + " at "
                                      + std::to_string(value) + " does not scale");
        }
    }
}

} // namespace
