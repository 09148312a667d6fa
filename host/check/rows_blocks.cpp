/// However a host cuts time into blocks, they are filled and nothing else is.

#include "check/rows.h"
#include "check/vst_subject.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace {

constexpr int announced = 512;

/// Plays blocks of these lengths with a note in them, and expects all frames to be written.
void fills(trial& running, const std::vector<int>& lengths, int its_announced) {
    subject played(running, usual_rate, its_announced);
    require_outputs(running, played);
    for (const int length : lengths) {
        running.doing("a block of " + std::to_string(length) + " frames");
        played.forget();
        if (played.tested().is_instrument())
            played.strike(middle_note);
        for (int i = 0; i < 8; ++i)
            played.play(length);
        played.expect_written();
        played.expect_finite();
    }
    running.doing("");
}

void odd_lengths(trial& running) {
    fills(running, {1, 2, 3, 7, 63, 64, 65, 100, 333, 441, 511, announced, 1}, announced);
}

void random_lengths(trial& running) {
    std::mt19937 random(running.seed);
    std::vector<int> lengths(64);
    std::ranges::generate(lengths, [&] { return 1 + static_cast<int>(random() % announced); });
    fills(running, lengths, announced);
}

void powers_of_two(trial& running) {
    for (const int length : {16, 32, 64, 128, 256, 1024, 8192})
        fills(running, {length}, length);
}

void longer_than_announced(trial& running) { fills(running, {65, 300, 4096}, usual_block); }

void no_frames(trial& running) {
    subject played(running, usual_rate, usual_block);
    require_outputs(running, played);
    for (int i = 0; i < 3; ++i) {
        played.strike(middle_note + i);
        played.play(0);
    }
    played.expect_written();
    played.expect_plays(false);
}

/// Hosts leave outputs unconnected.
void null_outputs(trial& running) {
    const vst_subject played(running, usual_rate, usual_block);
    require_outputs(running, played);
    const auto nb_channels = static_cast<std::size_t>(played.record().numOutputs);
    std::vector<float> heard(usual_block);
    std::vector<float*> inputs(static_cast<std::size_t>(played.record().numInputs), heard.data());
    for (std::size_t unconnected = 0; unconnected <= nb_channels; ++unconnected) {
        running.doing(unconnected == nb_channels
                          ? "all outputs null"
                          : "output " + std::to_string(unconnected) + " null");
        std::vector<std::vector<float>> memory(nb_channels, heard);
        std::vector<float*> outputs;
        for (auto& channel : memory)
            outputs.push_back(channel.data());
        if (unconnected == nb_channels)
            std::ranges::fill(outputs, nullptr);
        else
            outputs[unconnected] = nullptr;
        played.strike(middle_note);
        played.record().processReplacing(&played.record(), inputs.data(), outputs.data(),
                                         usual_block);
    }
    running.doing("");
}

void double_precision(trial& running) {
    const vst_subject played(running);
    if (!played.has(effFlagsCanDoubleReplacing))
        running.skip("it does not process double precision");
    played.ask(effSetProcessPrecision, 0, 1);
    played.ask(effSetSampleRate, 0, 0, nullptr, usual_rate);
    played.ask(effSetBlockSize, 0, announced);
    played.ask(effMainsChanged, 0, 1);
    played.strike(middle_note);
    const auto channels = [](VstInt32 nb) {
        return std::vector<std::vector<double>>(static_cast<std::size_t>(nb),
                                                std::vector<double>(announced));
    };
    auto inputs = channels(played.record().numInputs);
    auto outputs = channels(played.record().numOutputs);
    std::vector<double*> p_inputs;
    std::vector<double*> p_outputs;
    for (auto& input : inputs)
        p_inputs.push_back(input.data());
    for (auto& output : outputs)
        p_outputs.push_back(output.data());
    played.record().processDoubleReplacing(&played.record(), p_inputs.data(), p_outputs.data(),
                                           announced);
    played.ask(effMainsChanged, 0, 0);
    for (const auto& output : outputs)
        running.expect(
            std::ranges::all_of(output, [](double sample) { return std::isfinite(sample); }),
            "it is not finite");
}

} // namespace

table block_rows() {
    return table{{"blocks/odd lengths", demand::interface, odd_lengths},
                 {"blocks/random lengths", demand::interface, random_lengths},
                 {"blocks/powers of two", demand::interface, powers_of_two}}
           + only(plugin_format::vst,
                  {{"blocks/longer than announced", demand::hosts, longer_than_announced},
                   {"blocks/no frames", demand::hosts, no_frames},
                   {"blocks/null outputs", demand::hosts, null_outputs},
                   {"blocks/double precision", demand::interface, double_precision}});
}
