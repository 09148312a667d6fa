/// Loading, opening, closing and unloading.

#include "check/rows.h"
#include "check/vst_subject.h"
#include "platform/library.h"

#include <chrono>
#include <cmath>
#include <list>

namespace {

void opens_and_closes(trial& running) {
    subject opened(running);
    opened.close();
}

void closes_at_any_time(trial& running) {
    const char* const stages[]{"before it is set up", "ready to play", "while it sounds",
                               "while events wait"};
    for (int stage = 0; stage < 4; ++stage) {
        running.doing(std::string{"closed "} + stages[stage]);
        subject closed(running);
        if (stage > 0)
            closed.prepare(usual_rate, usual_block);
        if (stage > 1) {
            require_outputs(running, closed);
            closed.strike(middle_note);
            closed.play_long(256);
        }
        if (stage > 2)
            closed.strike(middle_note + 2);
        closed.close();
    }
}

void closes_in_any_order(trial& running) {
    std::list<subject> living;
    for (int i = 0; i < 6; ++i)
        living.emplace_back(running, usual_rate, usual_block);
    require_outputs(running, living.front());
    for (int i = 0; !living.empty(); ++i) {
        living.erase(i % 2 ? std::prev(living.end()) : living.begin());
        for (subject& other : living)
            other.expect_plays(false);
    }
}

void mute_host(trial& running) {
    effect alone(running.file, answer_version);
    alone.ask(effSetSampleRate, 0, 0, nullptr, usual_rate);
    alone.ask(effSetBlockSize, 0, usual_block);
    alone.ask(effMainsChanged, 0, 1);
    alone.ask(effMainsChanged, 0, 0);
}

/// Hosts look at a thousand plug-ins when they start.
void quickly(trial& running) {
    const auto begin = std::chrono::steady_clock::now();
    { const subject scanned(running); }
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - begin;
    running.prefer(taken.count() < 100, "it takes " + std::to_string(std::lround(taken.count()))
                                            + " ms to open and close it");
}

void unloads_wholly(trial& running) {
    std::filesystem::path file;
    {
        const subject loaded(running, usual_rate, usual_block);
        file = loaded.tested().library_file();
    }
    running.prefer(!library_is_loaded(file), "the library stays in memory after its unloading");
}

} // namespace

table loading_rows() {
    return table{{"loading/opens and closes", demand::interface, opens_and_closes},
                 {"loading/closes at any time", demand::interface, closes_at_any_time},
                 {"loading/closes in any order", demand::interface, closes_in_any_order},
                 {"loading/in a tenth of a second", demand::hosts, quickly},
                 {"loading/unloads wholly", demand::hosts, unloads_wholly}}
           + only(plugin_format::vst,
                  {{"loading/host that answers only its version", demand::interface, mute_host}});
}
