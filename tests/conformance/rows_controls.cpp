/// Controllers, the split, the messages that silence, and dumps.

#include "conformance/instrument.h"
#include "probe/signal.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

using Controls = Row;

TEST_F(Controls, ControllersSetTheirParameters) {
    instrument playing(running, set_up{});
    for (VstInt32 index = 0; index < nb_parameters; ++index)
        for (const int value : {0, 1, 63, 64, 127}) {
            const int number = controllers[index];
            playing.send(controller(0, number, value));
            running.expect(playing.get(index) == static_cast<float>(value) / 127.0f,
                           "controller " + std::to_string(number) + " at " + std::to_string(value)
                               + " gives " + std::to_string(playing.get(index)));
        }
}

std::vector<float> values(instrument& asked) {
    std::vector<float> all;
    for (VstInt32 index = 0; index < nb_parameters; ++index)
        all.push_back(asked.get(index));
    return all;
}

TEST_F(Controls, OtherControllersAndChannelsSetNothing) {
    instrument playing(running, set_up{});
    const std::vector<float> before = values(playing);
    for (int channel = 1; channel <= 16; ++channel)
        for (int number = 0; number < 128; ++number) {
            const bool is_bound = std::ranges::count(controllers, number) > 0;
            if (channel > 1 || !is_bound)
                playing.send(controller(0, number, 33, channel));
            running.expect(values(playing) == before, "controller " + std::to_string(number)
                                                          + " of channel " + std::to_string(channel)
                                                          + " changes a parameter");
        }
}

struct split_case {
    float value;
    bool manual_right, manual_left, bass_right, bass_left;
};

constexpr float third = 1.0f / 3;
constexpr float two_thirds = 2.0f / 3;

/// The thirds as floats lie just above a third and above two thirds.
const split_case splits[]{{0.0f, false, true, true, false},
                          {0.33f, false, true, true, false},
                          {std::nextafter(third, 0.0f), false, true, true, false},
                          {third, true, false, false, true},
                          {0.5f, true, false, false, true},
                          {0.66f, true, false, false, true},
                          {std::nextafter(two_thirds, 0.0f), true, false, false, true},
                          {two_thirds, true, true, true, true},
                          {0.67f, true, true, true, true},
                          {1.0f, true, true, true, true},
                          {3.0f, true, true, true, true}};

TEST_F(Controls, SplitRoutesTheKeyboards) {
    for (const split_case& wanted : splits)
        for (const bool is_bass : {false, true}) {
            instrument playing(running,
                               {.parameters = {{split, wanted.value}, {bass_chords, 0.0f}}});
            const recording sound = playing.render({note_on(0, is_bass ? 30 : 60)}, 4800);
            const bool right = is_bass ? wanted.bass_right : wanted.manual_right;
            const bool left = is_bass ? wanted.bass_left : wanted.manual_left;
            running.expect((peak(sound.right) > 0) == right && (peak(sound.left) > 0) == left,
                           std::string(is_bass ? "the bass" : "the manual") + " at split "
                               + std::to_string(wanted.value) + " takes the wrong output");
            running.expect(!right || !left || sound.right == sound.left,
                           "the mix differs between the outputs");
        }
}

/// Each keyboard sounds the same on whichever output it takes, and in the mix.
TEST_F(Controls, SplitExchangesTheOutputs) {
    const auto play = [this](float value) {
        instrument playing(running, {.parameters = {{split, value}}});
        return playing.render({note_on(0, 28), note_on(700, 60)}, 24000);
    };
    const recording bass_right = play(split_bass_right);
    const recording bass_left = play(0.5f);
    const recording mixed = play(split_mixed);
    running.expect(bass_left.left == bass_right.right, "the bass differs between the outputs");
    running.expect(bass_left.right == bass_right.left, "the manual differs between the outputs");
    std::vector<float> sum(bass_right.right);
    std::ranges::transform(sum, bass_right.left, sum.begin(), std::plus<>());
    running.expect(difference_db(mixed.right, sum) < -120, "the mix is not the sum of both");
}

constexpr long struck = 100;
constexpr long silenced = 24000;
constexpr long ended = 96000;

/// The Bright filter forgets slowest: its low pole lies at 0.5 Hz, 26 dB a second.
constexpr long decay = 48000;

recording play_until(trial& running, const midi& message, long nb_frames = ended) {
    instrument playing(running, set_up{});
    return playing.render({note_on(struck, 40), note_on(struck, 26), note_on(struck, 60), message},
                          nb_frames);
}

TEST_F(Controls, AllSoundOffLeavesNothing) {
    for (int channel = 1; channel <= 16; ++channel) {
        const recording sound =
            play_until(running, controller(silenced, 120, 0, channel), silenced + 4 * decay);
        const signal_span end = signal_span(sound.right).subspan(silenced + decay);
        running.expect(to_db(peak(end) / peak(sound.right)) < -75,
                       "120 on channel " + std::to_string(channel) + " leaves "
                           + std::to_string(to_db(peak(end) / peak(sound.right))) + " dB");
        running.expect(peak(end.subspan(2 * decay)) < 1e-6,
                       "3 s after 120 on channel " + std::to_string(channel) + " it has "
                           + std::to_string(to_db(peak(end.subspan(2 * decay)))) + " dB");
    }
}

/// The manual through Mellow alone, the filter that forgets fastest.
recording play_mellow(trial& running, const score& played) {
    instrument playing(
        running, {.blocks = {512},
                  .parameters = {{flute, 0.0f}, {bright, 0.0f}, {brass, 0.0f}, {bass, 0.0f}}});
    return playing.render(played, 2 * silenced);
}

/// On the grid of 64 frames and off it, without the 30 ms of a release. The keys lose what they
/// have not yet played of the piece of 64 frames that brings it.
TEST_F(Controls, AllSoundOffActsInTime) {
    constexpr long piece = 64;
    constexpr long forgotten = 240;
    const recording untouched = play_mellow(running, {note_on(0, 60)});
    for (const long frame : {10L, silenced, silenced + 17}) {
        const recording sound = play_mellow(running, {note_on(0, 60), controller(frame, 120, 0)});
        const auto first = std::ranges::mismatch(sound.right, untouched.right).in1;
        running.frame = static_cast<long>(first - sound.right.begin());
        running.expect(running.frame > frame - piece && running.frame <= frame + 1,
                       "120 of frame " + std::to_string(frame) + " acts at frame "
                           + std::to_string(running.frame));
        const signal_span end =
            signal_span(sound.right).subspan(static_cast<std::size_t>(frame + forgotten));
        const double db = to_db(peak(end) / peak(untouched.right));
        running.expect(db < -75, "5 ms after 120 of frame " + std::to_string(frame) + " it has "
                                     + std::to_string(db) + " dB");
    }
}

/// In one frame, a list's order decides.
TEST_F(Controls, AllSoundOffActsInItsListsOrder) {
    const midi off = controller(10, 120, 0);
    const recording untouched = play_mellow(running, {note_on(10, 60)});
    running.expect(play_mellow(running, {off, note_on(10, 60)}).right == untouched.right,
                   "120 changes a note that follows it");
    running.expect(peak(play_mellow(running, {note_on(10, 60), off}).right) == 0,
                   "120 leaves a note that precedes it");
}

/// Both keyboards hear every channel, and such a keyboard ignores "all notes off".
TEST_F(Controls, OtherMessagesAreIgnored) {
    const recording untouched = play_until(running, {silenced, {0xE0, 0, 64}});
    score ignored{controller(silenced, 123, 5),  controller(silenced, 120, 5),
                  controller(silenced, 121, 0),  midi{silenced, {0xD0, 100, 0}},
                  midi{silenced, {0xA0, 60, 0}}, midi{silenced, {0xF8, 0, 0}},
                  midi{silenced, {0xFF, 0, 0}},  midi{silenced, {0x3C, 60, 0}}};
    for (int channel = 1; channel <= 16; ++channel)
        ignored.push_back(controller(silenced, 123, 0, channel));
    for (const midi& message : ignored)
        running.expect(play_until(running, message).right == untouched.right,
                       "message " + std::to_string(message.bytes[0]) + " "
                           + std::to_string(message.bytes[1]) + " "
                           + std::to_string(message.bytes[2]) + " is heard");
}

TEST_F(Controls, NotesEnd) {
    for (const midi& end :
         {note_off(silenced, 60), midi{silenced, {0x90, 60, 0}}, midi{silenced, {0x8F, 60, 127}}}) {
        instrument playing(running, set_up{});
        const recording sound = playing.render({note_on(struck, 60), end}, ended);
        const signal_span rest = signal_span(sound.right).subspan(silenced + decay);
        const double db = to_db(peak(rest) / peak(sound.right));
        running.expect(db < -75, "message " + std::to_string(end.bytes[0]) + " leaves "
                                     + std::to_string(db) + " dB");
    }
}

TEST_F(Controls, NotesOfEveryChannelSoundAlike) {
    instrument first(running, set_up{});
    const recording wanted = first.render({note_on(0, 60)}, 4800);
    for (int channel = 1; channel < 16; ++channel) {
        instrument playing(running, set_up{});
        const recording sound = playing.render({{0, {0x90 | channel, 60, 1 + channel}}}, 4800);
        running.expect(sound.right == wanted.right,
                       "a note of channel " + std::to_string(channel + 1) + " sounds otherwise");
    }
}

/// The list is handed back once for each dump in it.
TEST_F(Controls, AListIsEchoedOnceADump) {
    instrument played(running, set_up{});
    const std::uint8_t dump[]{0xF0, 0x7D, 1, 2, 0xF7};
    event_list events;
    events.add_sysex(dump, 0);
    events.add_midi(message_of(note_on(0, 50)), 0);
    events.add_sysex(dump, 0);
    played.send(events);
    const auto nb_echoes = std::ranges::count_if(played.its_host.calls, [&](const host_call& call) {
        return call.opcode == audioMasterProcessEvents && call.ptr == events.records();
    });
    running.expect(nb_echoes == 2, "two dumps are not echoed twice");
    const recording sound = played.render({}, 4800);
    running.expect(peak(sound.right) > 1e-3, "the note between two dumps is lost");
}

} // namespace
