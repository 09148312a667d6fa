/// Plays one of a few scenes, for those who count what it takes: in instructions, which a busy
/// machine does not change.
///
///   scene NAME    one second of sound of that scene, or the making of an instrument
///   scene         the scenes' names

#include "bench/instrument.h"

#include <cstdio>
#include <cstring>
#include <optional>

namespace {

std::optional<instrument> played;

void play_chord(int nb_keys, int block = 64) {
    played.emplace(fast, block);
    played->play(nb_keys, true);
    played->render_second();
}

void render_second() { played->render_second(); }

void strike_blocks() {
    for (int i = 0; i < 10; ++i) {
        played->play(49, true);
        played->render_block();
        played->play(49, false);
        for (int b = 0; b < 30; ++b)
            played->render_block();
    }
}

struct scene {
    const char* name;
    void (*prepare)();
    void (*play)();
};

constexpr scene scenes[] = {
    {"rest",
     [] {
         play_chord(10);
         played->play(10, false);
         for (int second = 0; second < 60; ++second)
             played->render_second();
     },
     render_second},
    {"after playing",
     [] {
         play_chord(10);
         played->play(10, false);
         played->render_second();
     },
     render_second},
    {"1 key", [] { play_chord(1); }, render_second},
    {"10 keys", [] { play_chord(10); }, render_second},
    {"49 keys", [] { play_chord(49); }, render_second},
    {"49 keys, blocks of 100", [] { play_chord(49, 100); }, render_second},
    {"49 keys struck", [] { played.emplace(fast, 64); }, strike_blocks},
    {"creation", [] {},
     [] {
         played.emplace(fast, 64);
         played->render_block();
     }},
};

} // namespace

/// What is counted.
extern "C" __attribute__((noinline)) void scene_play(const scene* p_scene) { p_scene->play(); }

int main(int argc, char** argv) {
    setenv("TINDELWAX_SEED", "1", 1);
    for (const scene& each : scenes)
        if (argc < 2) {
            std::puts(each.name);
        } else if (std::strcmp(argv[1], each.name) == 0) {
            each.prepare();
            scene_play(&each);
            return 0;
        }
    return argc < 2 ? 0 : 2;
}
