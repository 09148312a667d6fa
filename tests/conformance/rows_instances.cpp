/// Many instruments in one process, and the same instrument twice.

#include "conformance/instrument.h"
#include "conformance/tables.h"
#include "probe/signal.h"

#include <functional>
#include <future>
#include <list>

namespace {

constexpr int nb_instances = 16;
constexpr int nb_threads = 4;
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

/// Does each on a thread of its own. What one of them throws comes out here.
void do_at_once(const std::vector<std::function<void()>>& jobs) {
    std::vector<std::future<void>> threads;
    for (const std::function<void()>& job : jobs)
        threads.push_back(std::async(std::launch::async, job));
    for (std::future<void>& thread : threads)
        thread.get();
}

/// A thread's share of the instances, block by block.
void play_share(const std::vector<instrument*>& playing, recordings& got, int first) {
    for (int i = 0; i < nb_blocks; ++i)
        for (int number = first; number < nb_instances; number += nb_threads) {
            const auto position = static_cast<std::size_t>(number);
            play_block(*playing[position], number, i, got[position]);
        }
}

void on_threads(trial& running) {
    const recordings wanted = each_alone(running);
    // Where an instrument is, it writes down in a trial of its own.
    std::list<trial> trials;
    std::list<instrument> playing;
    std::vector<instrument*> by_number;
    for (int number = 0; number < nb_instances; ++number) {
        trials.push_back(running);
        by_number.push_back(&playing.emplace_back(trials.back(), set_up_of(number)));
    }
    recordings got(nb_instances);
    std::vector<std::function<void()>> jobs;
    for (int first = 0; first < nb_threads; ++first)
        jobs.emplace_back([&, first] { play_share(by_number, got, first); });
    do_at_once(jobs);
    expect_equal(running, got, wanted);
}

/// Loading, playing and closing at once, as hosts do that open a project's tracks in parallel.
void created_on_threads(trial& running) {
    const library kept(running.plugin_file);
    const recording wanted = play_alone(running, 1);
    recordings got(nb_threads);
    std::vector<std::function<void()>> jobs;
    for (recording& sound : got)
        jobs.emplace_back([&sound, own = running]() mutable {
            for (int i = 0; i < 4; ++i)
                sound = play_alone(own, 1);
        });
    do_at_once(jobs);
    expect_equal(running, got, recordings(nb_threads, wanted));
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
            {"instances/16 on four threads", on_threads},
            {"instances/created on four threads", created_on_threads},
            {"instances/same seed, same samples", same_seed}};
}
