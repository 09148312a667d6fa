#include "instrument/instrument.h"

#include "korvel/korvel.h"

#include <random>

namespace {

std::uint32_t draw_seed() {
    const auto asked = organ_asked_seed();
    return asked ? *asked : static_cast<std::uint32_t>(std::random_device{}());
}

} // namespace

instrument::instrument() : instrument(draw_seed()) {}

instrument::instrument(std::uint32_t its_seed)
    : seed(its_seed), newest(make().release()), current(newest) {}

instrument::~instrument() {
    delete coming.load();
    delete leaving.load();
    delete current;
}

std::unique_ptr<player> instrument::make() const {
    std::unique_ptr<player> made(player_create(korvel_create("Tindelwax", seed)));
    if (sampling_rate > 0)
        player_set_sampling_rate(made.get(), sampling_rate);
    return made;
}

/// What leaves is there before its successor is taken: whoever puts a new one into `coming`, and
/// then clears `leaving`, knows that nothing stands in its way.
player& instrument::playing() noexcept {
    if (leaving.load(std::memory_order_acquire) == nullptr
        && coming.load(std::memory_order_acquire) != nullptr) {
        leaving.store(current, std::memory_order_release);
        current = coming.exchange(nullptr, std::memory_order_acq_rel);
    }
    return *current;
}

/// The audio thread takes the new player at its next block; one that it never took goes at once.
void instrument::replace(const saved_state& state) {
    std::unique_ptr<player> made = make();
    saved_state_put(state, *made->p_control);
    newest = made.release();
    delete coming.exchange(newest, std::memory_order_acq_rel);
    delete leaving.exchange(nullptr, std::memory_order_acq_rel);
}

void instrument::set_sampling_rate(double rate) {
    const auto asked = static_cast<float>(rate);
    if (sampling_rate > 0 && asked != sampling_rate) {
        const saved_state state = saved_state_take(*newest->p_control, seed);
        sampling_rate = asked;
        replace(state);
    }
    sampling_rate = asked;
    player_set_sampling_rate(&playing(), asked);
}

std::string instrument::save() const {
    return saved_state_write(saved_state_take(*newest->p_control, seed));
}

bool instrument::load(std::string_view text) {
    const auto state = saved_state_read(text);
    if (!state)
        return false;
    if (state->seed == seed) {
        saved_state_put(*state, *newest->p_control);
        return true;
    }
    seed = state->seed;
    replace(*state);
    return true;
}
