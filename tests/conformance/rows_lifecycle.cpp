/// What an instrument takes from the system it gives back.

#include "conformance/instrument.h"
#include "conformance/tables.h"

#include <list>
#include <memory>

namespace {

constexpr int nb_rounds = 200;

/// What the system's own book-keeping may grow by over all rounds. One instance takes more.
constexpr std::size_t slack_bytes = 256 * 1024;

void query(instrument& asked) {
    asked.prepare({});
    const std::string name = asked.text(effGetEffectName, kVstMaxEffectNameLen);
    asked.running.expect(!name.empty(), "it has no name");
    asked.render({note_on(0, 60), note_on(0, 24)}, 640);
}

std::string amounts(const resources& used) {
    return std::to_string(used.nb_bytes) + " bytes, " + std::to_string(used.nb_threads)
           + " threads, " + std::to_string(used.nb_handles) + " handles, "
           + std::to_string(used.nb_slots) + " slots, " + std::to_string(used.nb_windows)
           + " windows";
}

void expect_given_back(const trial& running, const resources& before) {
    const resources after = resources_in_use();
    running.expect(after.nb_bytes <= before.nb_bytes + slack_bytes
                       && after.nb_threads <= before.nb_threads
                       && after.nb_handles <= before.nb_handles && after.nb_slots <= before.nb_slots
                       && after.nb_windows <= before.nb_windows,
                   "in use before: " + amounts(before) + "; after: " + amounts(after));
}

void loads_and_unloads(trial& running) {
    for (int i = 0; i < 10; ++i) // what the system allocates once, it has now
        query(*std::make_unique<instrument>(running));
    const resources before = resources_in_use();
    for (int i = 0; i < nb_rounds; ++i)
        query(*std::make_unique<instrument>(running));
    expect_given_back(running, before);
}

/// The library stays, so that what its static parts would hold shows.
void creates_and_closes(trial& running) {
    const plugin_library kept(running.plugin_file);
    for (int i = 0; i < 10; ++i)
        query(*std::make_unique<instrument>(running));
    const resources before = resources_in_use();
    for (int i = 0; i < nb_rounds; ++i)
        query(*std::make_unique<instrument>(running));
    expect_given_back(running, before);
}

void unloads_wholly(trial& running) {
    query(*std::make_unique<instrument>(running));
    running.expect(!plugin_library_is_loaded(running.plugin_file),
                   "the library stays in memory after its unloading");
}

void close_answers_1(trial& running) {
    const plugin_library library(running.plugin_file);
    host its_host;
    AEffect* effect = create_effect(its_host, library.entry());
    running.expect(effect->dispatcher(effect, effClose, 0, 0, nullptr, 0) == 1,
                   "effClose answers other than 1");
}

/// Closed while it sounds, while events wait, and before anything was set.
void close_at_any_time(trial& running) {
    for (int stage = 0; stage < 4; ++stage) {
        instrument closed(running);
        if (stage > 0)
            closed.prepare({});
        if (stage > 1)
            closed.render({note_on(0, 50)}, 100);
        event_list waiting;
        waiting.add(note_on(0, 52), 0);
        if (stage > 2)
            closed.send(waiting);
    }
}

void closes_in_any_order(trial& running) {
    std::list<instrument> living;
    for (int i = 0; i < 8; ++i)
        living.emplace_back(running, set_up{});
    for (int i = 0; !living.empty(); ++i) {
        living.erase(i % 2 ? std::prev(living.end()) : living.begin());
        for (instrument& other : living)
            other.render({note_on(0, 40 + i)}, 256);
    }
}

} // namespace

table lifecycle_rows() {
    return {{"lifecycle/close answers 1", close_answers_1},
            {"lifecycle/close at any time", close_at_any_time},
            {"lifecycle/instances close in any order", closes_in_any_order},
            {"lifecycle/200 x create and close", creates_and_closes},
            {"lifecycle/200 x load, query, close, unload", loads_and_unloads},
            {"lifecycle/unloads wholly", unloads_wholly}};
}
