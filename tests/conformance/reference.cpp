/// Sounds of one plug-in written to a file, and another's compared with them: the builds for all
/// systems play one seed's sounds alike, to the bit. A file beside them tells in JSON how they are
/// played, for whom this program cannot load.

#include "conformance/instrument.h"
#include "probe/signal.h"

#include <algorithm>
#include <fstream>
#include <string>
#include <utility>

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
    {"both",
     {{split, split_bass_right}},
     {note_on(7, 26), note_on(8, 38), note_on(9000, 33), note_off(20000, 38), note_off(20000, 33),
      note_off(25000, 26)}}};

constexpr int rates[]{22050, 44100, 48000, 96000, 32000};
constexpr long nb_frames = 40000;

/// Calls `visit(name, wanted, sound)` for every sound, in a fixed order.
template <typename Visit>
void play_all(trial& running, const Visit& visit) {
    for (const int rate : rates)
        for (const sound_case& wanted : cases) {
            instrument playing(running, {.rate = rate, .parameters = wanted.parameters});
            const recording sound = playing.render(wanted.played, nb_frames);
            const std::string name = std::string(wanted.name) + " at " + std::to_string(rate);
            for (const auto& samples : {sound.right, sound.left})
                running.expect(is_finite(samples) && peak(samples) > 1e-3,
                               name + " is silent or not finite");
            visit(name, wanted, sound);
        }
}

/// Every system that the plug-in is built for stores floats alike.
std::streamsize size_of(const std::vector<float>& samples) {
    return static_cast<std::streamsize>(samples.size() * sizeof(float));
}

template <typename Elements, typename Write>
std::string json_array(const Elements& elements, const Write& write) {
    std::string text;
    for (const auto& element : elements)
        text += (text.empty() ? "" : ", ") + write(element);
    return '[' + text + ']';
}

/// Messages are a frame and three bytes, parameters an index and a value.
std::string json_of(const std::string& name, int rate, const sound_case& wanted) {
    const auto parameters = json_array(wanted.parameters, [](const auto& set) {
        return '[' + std::to_string(set.first) + ", " + std::to_string(set.second) + ']';
    });
    const auto messages = json_array(wanted.played, [](const midi& message) {
        return '[' + std::to_string(message.frame) + ", "
               + json_array(message.bytes, [](int byte) { return std::to_string(byte); }).substr(1);
    });
    return "{\"name\": \"" + name + "\", \"rate\": " + std::to_string(rate)
           + ", \"frames\": " + std::to_string(nb_frames) + ", \"parameters\": " + parameters
           + ", \"messages\": " + messages + '}';
}

TEST_F(Reference, Write) {
    std::ofstream output(running.sounds_file, std::ios::binary);
    std::ofstream songs(running.sounds_file.string() + ".json");
    const char* separator = "[";
    play_all(running,
             [&](const std::string& name, const sound_case& wanted, const recording& sound) {
                 for (const auto& samples : {sound.right, sound.left})
                     output.write(reinterpret_cast<const char*>(samples.data()), size_of(samples));
                 songs << std::exchange(separator, ",\n") << json_of(name, running.rate, wanted);
             });
    songs << "]\n";
    running.expect(output.flush().good() && songs.flush().good(),
                   running.sounds_file.string() + " cannot be written");
}

TEST_F(Reference, Compare) {
    std::ifstream input(running.sounds_file, std::ios::binary);
    play_all(running, [&](const std::string& name, const sound_case&, const recording& sound) {
        for (const auto& samples : {sound.right, sound.left}) {
            std::vector<float> wanted(samples.size());
            input.read(reinterpret_cast<char*>(wanted.data()), size_of(wanted));
            running.expect(input.good(),
                           running.sounds_file.string() + " ends before \"" + name + "\"");
            running.frame = static_cast<long>(worst_index(samples, wanted));
            running.expect(samples == wanted, name + " is "
                                                  + std::to_string(difference_db(samples, wanted))
                                                  + " dB off");
        }
    });
}

} // namespace
