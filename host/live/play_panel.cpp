#include "live/play_panel.h"

#include <algorithm>

namespace {

player_window open_window(plugin& instrument, std::optional<int> scale) {
    if (!instrument.has_editor())
        instrument.fail("has no panel");
    if (scale)
        instrument.set_editor_scale(*scale);
    const editor_extent size = instrument.editor_size();
    return {std::max(size.width, 1), std::max(size.height, 1), instrument.name()};
}

void* require(void* window) {
    if (!window)
        throw failure{exit_failed, "the display shows no window; set DISPLAY to another, or play "
                                   "with --no-panel"};
    return window;
}

} // namespace

play_panel::play_panel(plugin& instrument, live_instrument& played, std::optional<int> scale)
    : keys_{played},
      window_{open_window(instrument, scale)},
      editor_{instrument, require(window_.handle())} {
    const editor_extent size = instrument.editor_size();
    if (!size.is_empty())
        window_.resize(size.width, size.height);
}

bool play_panel::idle() {
    const window_events events = window_.take_events();
    for (const window_key& key : events.keys)
        key.is_pressed ? keys_.press(key.code) : keys_.release(key.code);
    if (events.lost_keys)
        keys_.release_all();
    if (!events.is_closed)
        editor_.idle();
    return !events.is_closed;
}
