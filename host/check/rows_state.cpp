/// What a host saves of a plug-in, and hands to another instance.

#include "check/rows.h"
#include "check/subject.h"

#include <algorithm>

namespace {

std::string state_of(const trial& running, const subject& saved) {
    const std::optional<std::string> state = saved.tested().save();
    if (!state)
        running.skip("it leaves saving to its host");
    running.expect(!state->empty(), "its state has no bytes");
    return *state;
}

/// Not the values that it starts with.
void set_all(const subject& changed) {
    for (int i = 0; i < changed.nb_parameters(); ++i)
        changed.set(i, i % 2 ? 0.25f : 0.75f);
}

void comes_back(trial& running) {
    subject saved(running, usual_rate, usual_block);
    set_all(saved);
    saved.play_long(usual_block);
    const std::string state = state_of(running, saved);
    const guarded_memory copy(state.size());
    std::ranges::copy(state, copy.data());
    subject loaded(running, usual_rate, usual_block);
    running.expect(loaded.tested().load({copy.data(), copy.size()}), "it refuses its own state");
    loaded.play_long(usual_block);
    for (int i = 0; i < saved.nb_parameters(); ++i)
        running.prefer(loaded.get(i) == saved.get(i),
                       "parameter " + std::to_string(i) + " does not come back as it was");
}

/// A project that is opened and saved stays the same file.
void reproducible(trial& running) {
    subject saved(running, usual_rate, usual_block);
    set_all(saved);
    saved.play_long(usual_block);
    const std::string state = state_of(running, saved);
    running.prefer(state_of(running, saved) == state, "it is another when it is saved again");
    subject loaded(running, usual_rate, usual_block);
    loaded.tested().load(state);
    running.prefer(state_of(running, loaded) == state, "it is another once it was loaded");
}

void while_it_sounds(trial& running) {
    subject played(running, usual_rate, usual_block);
    require_outputs(running, played);
    const std::string state = state_of(running, played);
    for (int i = 0; i < 20; ++i) {
        played.strike(middle_note + i);
        played.play_long(4L * usual_block);
        played.tested().load(state);
    }
    played.expect_finite();
    played.expect_plays(false);
}

} // namespace

table state_rows() {
    return {{"state/comes back", demand::interface, comes_back},
            {"state/reproducible", demand::interface, reproducible},
            {"state/loaded while it sounds", demand::interface, while_it_sounds}};
}
