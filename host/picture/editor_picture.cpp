#include "picture/editor_picture.h"

#include "plugin/open_editor.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace {

using namespace std::chrono_literals;

// As often as hosts give editors their idle time, and long enough for one that draws by itself.
constexpr auto turn = 25ms;
constexpr int nb_still_turns = 10;
constexpr auto max_wait = 2s;

[[noreturn]] void fail(const std::string& sentence) { throw failure{exit_failed, sentence}; }

picture still_picture(open_editor& editor, const editor_window& window) {
    const auto deadline = std::chrono::steady_clock::now() + max_wait;
    picture shown;
    for (int nb_still = 0;
         nb_still < nb_still_turns && std::chrono::steady_clock::now() < deadline;) {
        editor.idle();
        std::this_thread::sleep_for(turn);
        picture next = window.take();
        nb_still = next == shown ? nb_still + 1 : 0;
        shown = std::move(next);
    }
    return shown;
}

} // namespace

picture editor_picture(plugin& instrument) {
    if (!instrument.has_editor())
        instrument.fail("has no editor");
    // Some know their size only once they are open.
    editor_extent size = instrument.editor_size();
    editor_window window{std::max(size.width, 1), std::max(size.height, 1)};
    if (!window.handle())
        fail("the display shows no window; set DISPLAY to another");
    open_editor editor{instrument, window.handle()};
    size = instrument.editor_size();
    if (size.is_empty())
        instrument.fail("does not tell the size of its editor");
    window.resize(size.width, size.height);
    picture shown = still_picture(editor, window);
    if (shown.pixels.empty())
        fail("the editor's " + std::to_string(size.width) + " by " + std::to_string(size.height)
             + " pixels cannot be read from the display; set DISPLAY to one that holds them");
    return shown;
}
