/// Many instances in one process.

#include "check/rows.h"
#include "check/subject.h"

#include <future>
#include <list>

namespace {

constexpr int nb_instances = 8;
constexpr int nb_threads = 4;
constexpr int nb_blocks = 200;
constexpr int block = 96;

/// Each has a rate and a tune of its own.
struct player {
    player(trial& running, int its_number)
        : number{its_number}, played(running, number % 2 ? 44100 : 48000, block) {}

    void play_block(int position) {
        const int note = 36 + (number * 7 + position / 20 * 5) % 36;
        if (position % 20 == 0)
            played.strike(note);
        if (position % 20 == 15)
            played.let_go(note);
        played.play(block);
    }

    int number;
    subject played;
};

sound play_alone(trial& running, int number) {
    player alone(running, number);
    for (int i = 0; i < nb_blocks; ++i)
        alone.play_block(i);
    return alone.played.heard();
}

std::vector<sound> each_alone(trial& running) {
    std::vector<sound> sounds;
    for (int number = 0; number < nb_instances; ++number)
        sounds.push_back(play_alone(running, number));
    return sounds;
}

/// What plays otherwise each time is not compared.
void expect_alike(trial& running, const std::function<std::vector<sound>()>& together) {
    require_sound(running);
    const std::vector<sound> wanted = each_alone(running);
    if (wanted == together())
        return;
    if (each_alone(running) != wanted)
        running.skip("it does not sound the same twice");
    running.expect(false, "instances that play at once do not sound as each does alone");
}

void side_by_side(trial& running) {
    expect_alike(running, [&] {
        std::list<player> players;
        for (int number = 0; number < nb_instances; ++number)
            players.emplace_back(running, number);
        for (int i = 0; i < nb_blocks; ++i)
            for (player& each : players)
                each.play_block(i);
        std::vector<sound> sounds;
        for (const player& each : players)
            sounds.push_back(each.played.heard());
        return sounds;
    });
}

/// Does it on several threads, each with its share of the instances.
std::vector<sound> on_threads(const std::function<sound(int)>& play_one) {
    std::vector<sound> sounds(nb_instances);
    std::vector<std::future<void>> threads;
    for (int first = 0; first < nb_threads; ++first)
        threads.push_back(std::async(std::launch::async, [&sounds, &play_one, first] {
            for (int number = first; number < nb_instances; number += nb_threads)
                sounds[static_cast<std::size_t>(number)] = play_one(number);
        }));
    for (std::future<void>& thread : threads)
        thread.get();
    return sounds;
}

void played_on_threads(trial& running) {
    expect_alike(running, [&] {
        std::list<player> players;
        std::vector<player*> by_number;
        for (int number = 0; number < nb_instances; ++number)
            by_number.push_back(&players.emplace_back(running, number));
        return on_threads([&by_number](int number) {
            player& each = *by_number[static_cast<std::size_t>(number)];
            for (int i = 0; i < nb_blocks; ++i)
                each.play_block(i);
            return each.played.heard();
        });
    });
}

/// Hosts open a project's tracks in parallel; the interface promises one thread for that.
void made_on_threads(trial& running) {
    const subject kept(running, usual_rate, usual_block); // keeps the library loaded
    expect_alike(running, [&running] {
        return on_threads([&running](int number) { return play_alone(running, number); });
    });
}

} // namespace

table instance_rows() {
    return {{"instances/side by side", demand::interface, side_by_side},
            {"instances/played on threads", demand::interface, played_on_threads},
            {"instances/made on threads", demand::hosts, made_on_threads}};
}
