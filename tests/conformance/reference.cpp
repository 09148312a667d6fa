/// Sounds of one plug-in written to a file, and another's compared with them: the builds for all
/// systems play one seed's sounds alike, to the bit.

#include "conformance/instrument.h"
#include "probe/signal.h"

#include <algorithm>
#include <fstream>

namespace {

using Reference = Row;

struct sound_case {
    const char* name;
    std::vector<std::pair<VstInt32, float>> parameters;
    score played;
};

const score manual{note_on(100, 36), note_on(3000, 60), note_on(3000, 67), note_off(20000, 60),
                   note_on(25000, 72)};

const sound_case cases[]{
    {"Flute", {{bright, 0.0f}, {brass, 0.0f}, {mellow, 0.0f}}, manual},
    {"Bright", {{flute, 0.0f}, {brass, 0.0f}, {mellow, 0.0f}}, manual},
    {"Brass", {{flute, 0.0f}, {bright, 0.0f}, {mellow, 0.0f}}, manual},
    {"Mellow", {{flute, 0.0f}, {bright, 0.0f}, {brass, 0.0f}}, manual},
    {"all stops and vibrato", {{vibrato, 1.0f}, {contour, 0.6f}}, manual},
    {"bass", {{bass_chords, 0.0f}}, {note_on(0, 35), note_on(9000, 24), note_off(20000, 24)}},
    {"both", {}, {note_on(7, 26), note_on(8, 38), note_on(9000, 33), note_off(30000, 26)}}};

constexpr int rates[]{22050, 44100, 48000, 96000, 32000};
constexpr long nb_frames = 40000;

/// Calls `visit(name, samples)` for every sound, in a fixed order.
template <typename Visit>
void play_all(trial& running, const Visit& visit) {
    for (const int rate : rates)
        for (const sound_case& wanted : cases) {
            instrument playing(running, {.rate = rate, .parameters = wanted.parameters});
            const recording sound = playing.render(wanted.played, nb_frames);
            const std::string name = std::string(wanted.name) + " at " + std::to_string(rate);
            running.expect(is_finite(sound.right) && peak(sound.right) > 1e-3,
                           name + " is silent or not finite");
            visit(name, sound.right);
        }
}

/// Every system that the plug-in is built for stores floats alike.
std::streamsize size_of(const std::vector<float>& samples) {
    return static_cast<std::streamsize>(samples.size() * sizeof(float));
}

TEST_F(Reference, Write) {
    std::ofstream output(running.sounds_file, std::ios::binary);
    play_all(running, [&](const std::string&, const std::vector<float>& samples) {
        output.write(reinterpret_cast<const char*>(samples.data()), size_of(samples));
    });
    running.expect(output.flush().good(), running.sounds_file.string() + " cannot be written");
}

TEST_F(Reference, Compare) {
    std::ifstream input(running.sounds_file, std::ios::binary);
    play_all(running, [&](const std::string& name, const std::vector<float>& samples) {
        std::vector<float> wanted(samples.size());
        input.read(reinterpret_cast<char*>(wanted.data()), size_of(wanted));
        running.expect(input.good(),
                       running.sounds_file.string() + " ends before \"" + name + "\"");
        running.frame = static_cast<long>(worst_index(samples, wanted));
        running.expect(samples == wanted,
                       name + " is " + std::to_string(difference_db(samples, wanted)) + " dB off");
    });
}

} // namespace
