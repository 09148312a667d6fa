/// The same instrument twice.

#include "conformance/instrument.h"
#include "conformance/tables.h"

namespace {

std::vector<float> play(trial& running, unsigned seed) {
    running.seed = seed;
    instrument playing(running, {.parameters = {{vibrato, 1.0f}}});
    return playing.render({note_on(0, 60), note_on(700, 28), note_off(9000, 60)}, 24000).right;
}

void same_seed(trial& running) {
    const std::vector<float> first = play(running, 1);
    running.expect(play(running, 1) == first, "one seed gives two sounds");
    running.expect(play(running, 2) != first, "two seeds give one sound");
}

} // namespace

table instance_rows() { return {{"instances/same seed, same samples", same_seed}}; }
