/// In whatever order and however often a host sets it up, the plug-in plays.

#include "check/rows.h"
#include "check/vst_subject.h"

#include <limits>

namespace {

struct order_case {
    const char* name;
    std::string calls; ///< r: rate, b: block length, m: resume, s: suspend
    demand by = demand::interface;
};

const order_case orders[]{{"set-up/block length before rate", "brm"},
                          {"set-up/resumed before it is set up", "mrb", demand::hosts},
                          {"set-up/all of it twice", "rbmsrbm"},
                          {"set-up/set up anew without suspension", "rbmrbrb", demand::hosts}};

void any_order(trial& running, const std::string& calls) {
    require_sound(running);
    vst_subject played(running);
    for (const char call : calls)
        switch (call) {
        case 'r':
            played.set_rate(usual_rate);
            break;
        case 'b':
            played.set_block(usual_block);
            break;
        case 'm':
            played.resume();
            break;
        default:
            played.suspend();
        }
    played.expect_plays(true);
}

void suspended_and_resumed(trial& running) {
    require_sound(running);
    subject played(running, usual_rate, usual_block);
    played.strike(middle_note - 12);
    for (int i = 0; i < 100; ++i) {
        played.suspend();
        played.resume();
        played.play_long(64);
    }
    played.expect_finite();
    played.expect_plays(true);
}

void rates_while_it_sounds(trial& running) {
    subject played(running, usual_rate, usual_block);
    require_outputs(running, played);
    for (const int rate : {96000, 22050, 44100, 192000, 48000}) {
        played.strike(middle_note);
        played.play_long(rate / 20);
        played.prepare(rate, 17);
        played.expect_plays(false);
    }
}

void odd_figures(trial& running) {
    using limits = std::numeric_limits<float>;
    const vst_subject asked(running, usual_rate, usual_block);
    for (const float rate : {0.0f, -48000.0f, 1e9f, limits::quiet_NaN(), limits::infinity()}) {
        running.doing("a rate of " + std::to_string(rate));
        asked.ask(effSetSampleRate, 0, 0, nullptr, rate);
    }
    for (const VstIntPtr nb_frames : {0, -1}) {
        running.doing("a block length of " + std::to_string(nb_frames));
        asked.ask(effSetBlockSize, 0, nb_frames);
    }
    running.doing("");
}

void plays_at(trial& running, int rate) {
    require_sound(running);
    subject played(running, rate, usual_block);
    played.expect_plays(true);
}

} // namespace

table set_up_rows() {
    table of_vst{{"set-up/odd rates and lengths", demand::hosts, odd_figures}};
    for (const order_case& judged : orders)
        of_vst.push_back({judged.name, judged.by,
                          [&judged](trial& running) { any_order(running, judged.calls); }});
    table rows{{"set-up/suspended and resumed", demand::interface, suspended_and_resumed},
               {"set-up/rates while it sounds", demand::interface, rates_while_it_sounds}};
    for (const int rate : {8000, 22050, 32000, 44100, 48000, 88200, 96000, 192000})
        rows.push_back({"rates/" + std::to_string(rate), demand::interface,
                        [rate](trial& running) { plays_at(running, rate); }});
    return rows + only(plugin_format::vst, std::move(of_vst));
}
