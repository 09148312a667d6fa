#include "picture/editor_picture.h"

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

struct extent {
    int width = 0;
    int height = 0;

    [[nodiscard]] bool is_empty() const { return width <= 0 || height <= 0; }
};

/// Empty if the plug-in does not tell.
extent editor_extent(plugin& instrument) {
    ERect* p_rect = nullptr;
    instrument.ask(effEditGetRect, 0, 0, &p_rect);
    if (!p_rect)
        return {};
    return {p_rect->right - p_rect->left, p_rect->bottom - p_rect->top};
}

class open_editor {
public:
    open_editor(plugin& instrument, void* window) : instrument_{instrument} {
        if (!instrument_.ask(effEditOpen, 0, 0, window))
            instrument_.fail("refuses to open its editor");
    }
    ~open_editor() { instrument_.ask(effEditClose); }
    open_editor(const open_editor&) = delete;
    open_editor& operator=(const open_editor&) = delete;

    void idle() { instrument_.ask(effEditIdle); }

private:
    plugin& instrument_;
};

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
    if (!(instrument.record().flags & effFlagsHasEditor))
        instrument.fail("has no editor");
    // Some know their size only once they are open.
    extent size = editor_extent(instrument);
    editor_window window{std::max(size.width, 1), std::max(size.height, 1)};
    if (!window.handle())
        fail("the display shows no window; set DISPLAY to another");
    open_editor editor{instrument, window.handle()};
    size = editor_extent(instrument);
    if (size.is_empty())
        instrument.fail("does not tell the size of its editor");
    window.resize(size.width, size.height);
    picture shown = still_picture(editor, window);
    if (shown.pixels.empty())
        fail("the editor's " + std::to_string(size.width) + " by " + std::to_string(size.height)
             + " pixels cannot be read from the display; set DISPLAY to one that holds them");
    return shown;
}
