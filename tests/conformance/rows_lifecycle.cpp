/// What an instrument takes from the system it gives back.

#include "conformance/instrument.h"
#include "conformance/tables.h"
#include "probe/lost_resources.h"
#include "probe/signal.h"

#include <list>
#include <memory>

namespace {

constexpr int nb_rounds = 200;

void query(instrument& asked) {
    asked.prepare({});
    const std::string name = asked.text(effGetEffectName, kVstMaxEffectNameLen);
    asked.running.expect(!name.empty(), "it has no name");
    asked.render({note_on(0, 60), note_on(0, 24)}, 640);
}

void loads_and_unloads(trial& running) {
    const std::string lost = lost_resources([&running] {
        for (int i = 0; i < nb_rounds; ++i)
            query(*std::make_unique<instrument>(running));
    });
    running.expect(lost.empty(), "it loses " + lost);
}

/// The library stays, so that what its static parts would hold shows.
void creates_and_closes(trial& running) {
    library kept(running.plugin_file);
    loads_and_unloads(running);
    kept.unload();
}

void unloads_wholly(trial& running) {
    query(*std::make_unique<instrument>(running));
    running.expect(!library_is_loaded(running.plugin_file),
                   "the library stays in memory after its unloading");
}

/// Closed while it sounds, while events wait, and before anything was set.
void close_at_any_time(trial& running) {
    for (int stage = 0; stage < 4; ++stage) {
        instrument closed(running);
        if (stage > 0)
            closed.prepare({});
        if (stage > 1)
            closed.render({note_on(0, 50)}, 100);
        if (stage > 2)
            closed.send(note_on(0, 52));
        running.expect(closed.close() == 1, "effClose answers other than 1");
    }
}

void closes_in_any_order(trial& running) {
    std::list<instrument> living;
    for (int i = 0; i < 8; ++i)
        living.emplace_back(running, set_up{});
    for (int i = 0; !living.empty(); ++i) {
        living.erase(i % 2 ? std::prev(living.end()) : living.begin());
        for (instrument& other : living)
            running.expect(peak(other.render({note_on(0, 40 + i)}, 256).right) > 0,
                           "closing one silences another");
    }
}

} // namespace

table lifecycle_rows() {
    return {{"lifecycle/close at any time", close_at_any_time},
            {"lifecycle/instances close in any order", closes_in_any_order},
            {"lifecycle/200 x create and close", creates_and_closes},
            {"lifecycle/200 x load, query, close, unload", loads_and_unloads},
            {"lifecycle/unloads wholly", unloads_wholly}};
}
