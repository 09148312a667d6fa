/// More events than any player sends.

#include "conformance/instrument.h"
#include "conformance/tables.h"
#include "probe/signal.h"

#include <random>

namespace {

/// A key that is struck first and held, many strokes of another, and a third key at the end: none
/// of them is lost.
void many_in_a_block(trial& running, int nb_strokes) {
    constexpr int block = 2048;
    const set_up manual_alone{.blocks = {block}, .parameters = {{bass, 0.0f}}};
    score strokes{note_on(0, 60)};
    for (int i = 0; i < nb_strokes; ++i) {
        const long frame = static_cast<long>(i) * block / nb_strokes;
        strokes.push_back(i % 2 == 0 ? note_on(frame, 40) : note_off(frame, 40));
    }
    strokes.push_back(note_on(block - 1, 67));
    instrument playing(running, manual_alone);
    instrument simple(running, manual_alone);
    playing.render(strokes, 96000);
    simple.render({note_on(0, 60), note_on(block - 1, 67)}, 96000);
    const recording got = playing.render({}, 4800);
    const recording wanted = simple.render({}, 4800);
    const double db = difference_db(got.right, wanted.right);
    running.expect(db < -60, std::to_string(nb_strokes)
                                 + " strokes end in another sound: " + std::to_string(db) + " dB");
}

/// A key in the last frame of a block full of notes that are nobody's keeps its frame.
void last_of_a_full_block(trial& running, int nb_events) {
    constexpr int block = 2048;
    constexpr int nobodys = 100;
    score strokes;
    for (int i = 0; i < nb_events - 1; ++i)
        strokes.push_back(note_on(static_cast<long>(i) * block / nb_events, nobodys));
    strokes.push_back(note_on(block - 1, 60));
    instrument playing(running, {.blocks = {block}});
    const recording sound = playing.render(strokes, 2 * block);
    running.frame = static_cast<long>(first_sound(sound.right));
    running.expect(running.frame == block,
                   "the note of frame " + std::to_string(block - 1) + " sounds from frame "
                       + std::to_string(running.frame) + ", wanted " + std::to_string(block));
}

/// Every 50th is a message that no keyboard sends; the others are notes and controllers.
midi random_message(std::mt19937& random) {
    const auto draw = [&random](unsigned below) { return static_cast<int>(random() % below); };
    if (draw(50) == 0)
        return {0, {draw(256), draw(256), draw(256)}};
    constexpr int statuses[]{0x80, 0x90, 0x90, 0xB0, 0xC0, 0xE0};
    return {0, {statuses[draw(6)] | draw(16), draw(128), draw(128)}};
}

void expect_silence_after_120(instrument& playing) {
    playing.send(controller(0, 120, 0));
    playing.render({}, 5 * 48000 - 4800);
    const recording sound = playing.render({}, 4800);
    const double db = to_db(peak(sound.right));
    playing.running.expect(db < -90, "5 s after 120 it has " + std::to_string(db) + " dBFS");
}

void million_messages(trial& running) {
    constexpr int nb_blocks = 2000;
    constexpr int messages_a_block = 500;
    instrument playing(running, {.blocks = {512}});
    std::mt19937 random(running.seed);
    for (int block = 0; block < nb_blocks; ++block) {
        event_list events;
        for (int i = 0; i < messages_a_block; ++i)
            events.add_midi(message_of(random_message(random)),
                            static_cast<VstInt32>(random() % 600) - 40);
        playing.send(events);
        const recording sound = playing.render({}, 1 + static_cast<long>(random() % 512));
        running.expect(is_finite(sound.right) && is_finite(sound.left), "it is not finite");
    }
    for (const VstInt32 level : {volume, bass})
        playing.set(level, 0.5f);
    playing.set(split, split_mixed);
    expect_silence_after_120(playing);
    playing.set(flute, 1.0f);
    running.expect(peak(playing.render({note_on(0, 60)}, 4800).right) > 1e-3,
                   "it does not play any more");
}

} // namespace

table storm_rows() {
    table rows{{"storm/a million messages", million_messages}};
    for (const int nb_events : {2000, 20000}) {
        const std::string events = std::to_string(nb_events) + " events";
        rows.push_back({"storm/" + events + " in a block",
                        [nb_events](trial& running) { many_in_a_block(running, nb_events); }});
        rows.push_back({"storm/the last of " + events + " in a block",
                        [nb_events](trial& running) { last_of_a_full_block(running, nb_events); }});
    }
    return rows;
}
