/// What closed forms say of steady sounds alone, against the plain form of the instrument.

#include "conformance/model.h"
#include "conformance/rates.h"
#include "probe/signal.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace {

using Model = Row;

constexpr long piece = 64; ///< frames

/// Of the loudest so far. The two forms round differently, and the Bright filter's pole beside 1
/// makes that 30 000 times larger: to -98 dB in the worst of 600 settings.
constexpr double bound_db = -90;

/// A library and the plain form, which play alike.
class duet {
public:
    duet(trial& its_trial, const set_up& wanted)
        : running(its_trial), library(its_trial, wanted), plain(its_trial, wanted) {}

    /// As a host does it, between blocks.
    void set(VstInt32 index, float value) {
        library.set(index, value);
        plain.set(index, value);
    }

    /// By a controller in the block that comes, which acts from that block's start.
    void turn(VstInt32 index, int value, long frame) {
        plain.set(index, static_cast<float>(value) / 127.0f);
        play({controller(frame, controllers[index], value)}, piece);
    }

    /// The plain form leaves controllers out.
    void play(const score& played, long nb_frames) {
        const long start = running.frame;
        const recording got = library.render(played, nb_frames);
        const recording wanted = plain.render(played, nb_frames);
        const long end = running.frame;
        for (const auto output : {&recording::right, &recording::left}) {
            loudest = std::max(loudest, peak(wanted.*output));
            const std::size_t worst = worst_index(got.*output, wanted.*output);
            const double error =
                std::fabs(static_cast<double>((got.*output)[worst] - (wanted.*output)[worst]));
            running.frame = start + static_cast<long>(worst);
            running.expect(error <= loudest * std::pow(10, bound_db / 20),
                           "it differs by " + std::to_string(to_db(error / loudest)) + " dB");
        }
        running.frame = end;
    }

private:
    trial& running;
    instrument library;
    model plain;
    double loudest = 0; ///< sample of the plain form
};

/// Of a piece's frames: where the host's block ends in front of which it sets a parameter, and
/// where a controller lies in the block that brings it.
constexpr long moved_frames[]{0, 31, 63};

constexpr int moved_values[]{0, 127, 63, 27}; ///< and back: 63 and 64 lie on either side of a half

/// The bass is soft and by itself at first, for the loudest sets the bound.
TEST_F(Model, ControlsMoveTheSoundAtOnce) {
    constexpr float soft = 0.05f;
    duet both(running, {.parameters = {{bass, soft}, {split, split_bass_right}}});
    both.play({note_on(3, 60), note_on(7, 67), note_on(40, 28), note_on(41, 31)}, 4800);
    for (VstInt32 index = 0; index < nb_parameters; ++index) {
        for (const int value : moved_values)
            for (const long frame : moved_frames) {
                running.doing = "parameter " + std::to_string(index) + " to "
                                + std::to_string(value) + " at frame " + std::to_string(frame);
                both.play({}, 10 * piece + frame);
                both.set(index, static_cast<float>(value) / 127.0f);
                both.play({}, 10 * piece - frame);
                both.turn(index, value ^ 127, frame);
            }
        if (index == bass)
            both.set(index, soft);
    }
}

TEST_F(Model, AnySettingsSoundAsThePlainForm) {
    constexpr int nb_settings = 50;
    const instrument kept(running); // loading the library anew takes longer than playing
    std::mt19937 random(running.seed);
    const auto below = [&](unsigned bound) { return static_cast<int>(random() % bound); };
    for (int setting = 0; setting < nb_settings; ++setting) {
        running.doing = "setting " + std::to_string(setting);
        set_up wanted{.rate = setting % 8 == 7 ? 1000 + below(199000)
                                               : supported_rates[setting % 8].rate};
        for (VstInt32 index = 0; index < nb_parameters; ++index)
            wanted.parameters.emplace_back(index, static_cast<float>(below(101)) / 100);
        duet both(running, wanted);
        for (int part = 0; part < 8; ++part) {
            score notes;
            for (long frame = below(40); frame < piece; frame += below(200))
                notes.push_back({frame, {below(3) ? 0x90 : 0x80, 20 + below(56), 100}});
            both.play(notes, piece * (1 + below(30)));
            both.set(below(nb_parameters), static_cast<float>(below(101)) / 100);
        }
    }
}

} // namespace
