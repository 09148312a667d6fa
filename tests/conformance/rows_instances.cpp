/// Many instruments in one process, and the same instrument twice.

#include "conformance/instrument.h"
#include "conformance/tables.h"
#include "probe/signal.h"

#include <list>

namespace {

constexpr int nb_instances = 16;
constexpr int nb_blocks = 300;
constexpr int block = 96;

/// Each has settings, a rate and a tune of its own.
set_up set_up_of(int number) {
    constexpr int rates[]{44100, 48000, 22050, 96000};
    return {.rate = rates[number % 4],
            .blocks = {block},
            .parameters = {{flute, number % 2 ? 1.0f : 0.0f},
                           {vibrato, number % 3 ? 1.0f : 0.0f},
                           {contour, static_cast<float>(number) / nb_instances},
                           {split, static_cast<float>(number % 4) / 3}}};
}

score events_of(int number, int block_number) {
    const int note = 24 + (number * 7 + block_number / 20 * 5) % 49;
    if (block_number % 20 == 0)
        return {note_on(number, note)};
    if (block_number % 20 == 15)
        return {note_off(number, note), controller(number, 86, block_number % 128)};
    return {};
}

void play_block(instrument& playing, int number, int block_number, recording& sound) {
    const recording part = playing.render(events_of(number, block_number), block);
    sound.right.insert(sound.right.end(), part.right.begin(), part.right.end());
    sound.left.insert(sound.left.end(), part.left.begin(), part.left.end());
}

recording play_alone(trial& running, int number) {
    instrument playing(running, set_up_of(number));
    recording sound;
    for (int i = 0; i < nb_blocks; ++i)
        play_block(playing, number, i, sound);
    return sound;
}

using recordings = std::vector<recording>;

recordings each_alone(trial& running) {
    recordings sounds;
    for (int number = 0; number < nb_instances; ++number)
        sounds.push_back(play_alone(running, number));
    return sounds;
}

void expect_equal(trial& running, const recordings& got, const recordings& wanted) {
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        running.frame = static_cast<long>(worst_index(got[i].right, wanted[i].right));
        running.expect(got[i].right == wanted[i].right && got[i].left == wanted[i].left,
                       "instance " + std::to_string(i) + " is not as alone");
        running.expect(peak(wanted[i].right) > 0, "instance " + std::to_string(i) + " is silent");
    }
}

void interleaved(trial& running) {
    const recordings wanted = each_alone(running);
    std::list<instrument> playing;
    for (int number = 0; number < nb_instances; ++number)
        playing.emplace_back(running, set_up_of(number));
    recordings got(nb_instances);
    for (int i = 0; i < nb_blocks; ++i) {
        int number = 0;
        for (instrument& each : playing) {
            play_block(each, number, i, got[static_cast<std::size_t>(number)]);
            ++number;
        }
    }
    expect_equal(running, got, wanted);
}

void same_seed(trial& running) {
    const recording first = play_alone(running, 3);
    const recording second = play_alone(running, 3);
    running.expect(first.right == second.right && first.left == second.left,
                   "one seed gives two sounds");
    trial other = running;
    other.seed = running.seed + 1;
    running.expect(play_alone(other, 3).right != first.right, "two seeds give one sound");
}

} // namespace

table instance_rows() {
    return {{"instances/16 interleaved", interleaved},
            {"instances/same seed, same samples", same_seed}};
}
