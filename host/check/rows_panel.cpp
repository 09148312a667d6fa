/// The panel in a host's window, and a user before it.

#include "check/panel_shown.h"
#include "check/rows.h"
#include "probe/lost_resources.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <mutex>

namespace {

/// Gestures that a host hears of, on whatever thread.
class gestures {
public:
    void hear(const panel_edit& edit) {
        const std::scoped_lock lock(guard_);
        switch (edit.what) {
        case panel_edit::step::begins:
            if (++open_[edit.parameter] > 1)
                complain(edit, "begins twice");
            break;
        case panel_edit::step::ends:
            if (--open_[edit.parameter] < 0)
                complain(edit, "ends that did not begin");
            return;
        default:
            if (!(edit.value >= 0 && edit.value <= 1))
                complain(edit, "sets a value outside 0 to 1");
        }
        ++nb_heard_;
    }

    /// About what went wrong so far; what it says of an open gesture ends with that.
    [[nodiscard]] std::string complaint() {
        const std::scoped_lock lock(guard_);
        for (const auto& [index, nb_open] : open_)
            if (nb_open > 0 && complaint_.empty())
                return "a gesture of parameter " + std::to_string(index) + " does not end";
        return complaint_;
    }

    [[nodiscard]] long nb_heard() {
        const std::scoped_lock lock(guard_);
        return nb_heard_;
    }

private:
    void complain(const panel_edit& edit, const char* what) {
        if (complaint_.empty())
            complaint_ = "a gesture of parameter " + std::to_string(edit.parameter) + " " + what;
    }

    std::mutex guard_{};
    std::map<int, int> open_{};
    std::string complaint_{};
    long nb_heard_ = 0;
};

void size(trial& running) {
    require_display(running);
    const subject asked(running, library::in_the_end::stays);
    if (!asked.tested().has_editor())
        running.skip("it has no panel");
    if (plugin_format_of(running.file) == plugin_format::lv2)
        running.skip("panels of its format tell their size as they open");
    running.prefer(!asked.tested().editor_size().is_empty(),
                   "it tells no size before it opens, or an empty one");
}

void opens(trial& running) {
    panel_shown user(running);
    const auto shows_something = [&] {
        const picture shown = user.window().take();
        return std::ranges::any_of(shown.pixels,
                                   [&](auto byte) { return byte != shown.pixels[0]; });
    };
    running.prefer(user.idle_until(shows_something), "it shows nothing");
    user.close();
    running.expect(user.idle_until([&] { return user.window().nb_left() == 0; }),
                   "it leaves a window when it closes");
}

void opens_many_times(trial& running) {
    panel_shown user(running);
    user.close();
    const std::string lost = lost_resources([&] {
        for (int i = 0; i < 30; ++i) {
            user.open();
            user.idle(2);
            user.close();
        }
    });
    running.expect(lost.empty(), "over 30 openings it loses " + lost);
}

void parent_goes_first(trial& running) {
    panel_shown user(running);
    user.idle(3);
    user.window().destroy();
    user.idle(3);
    user.close();
    panel_shown next(running);
    next.idle(3);
}

void closed_while_open(trial& running) {
    panel_shown user(running);
    user.idle(3);
    user.plugin().close();
}

void two_at_once(trial& running) {
    panel_shown user(running);
    panel_shown other(running);
    for (int i = 0; i < 5; ++i) {
        user.idle(1);
        other.idle(1);
    }
    user.close();
    other.idle(3);
}

void plays_while_open(trial& running) {
    panel_shown user(running);
    subject& played = user.plugin();
    require_outputs(running, played);
    played.prepare(usual_rate, usual_block);
    for (int i = 0; i < 30; ++i) {
        played.strike(36 + i);
        played.play_long(4L * usual_block);
        for (int index = 0; index < std::min(played.nb_parameters(), 32); ++index)
            played.set(index, static_cast<float>(i) / 30);
        user.idle(1);
    }
    played.expect_finite();
}

/// As close together as the smallest control, and wider apart on a panel so large that the row
/// would take minutes.
void each_place(const panel_shown& user, const std::function<void(window_place)>& act) {
    constexpr double max_places = 800;
    const int step =
        std::max(23, static_cast<int>(std::ceil(std::sqrt(static_cast<double>(user.width())
                                                          * user.height() / max_places))));
    for (int y = step / 2; y < user.height(); y += step)
        for (int x = step / 2; x < user.width(); x += step)
            act({x, y});
}

/// Clicks, and drags a little way up, all over the panel.
void balanced(trial& running) {
    gestures heard;
    panel_shown user(running);
    user.plugin().tested().set_listener([&heard](const panel_edit& edit) { heard.hear(edit); });
    user.idle(3);
    each_place(user, [&](window_place place) {
        running.doing("the mouse at " + std::to_string(place.x) + ", " + std::to_string(place.y));
        user.window().move(place);
        user.window().press();
        user.idle(1);
        user.window().move({place.x + 3, place.y - 9});
        user.idle(1);
        user.window().release();
        user.idle(1);
        std::string seen; // asked once, for a gesture may end just after the time is over
        user.idle_until([&] { return (seen = heard.complaint()).empty(); });
        running.expect(seen.empty(), seen);
    });
    running.doing("");
    user.close();
    if (heard.nb_heard() == 0)
        running.skip("no click or drag tells the host of a parameter");
}

} // namespace

table panel_rows() {
    return {{"panel/size", demand::interface, size},
            {"panel/opens", demand::interface, opens},
            {"panel/opens many times", demand::interface, opens_many_times},
            {"panel/plays while it is open", demand::interface, plays_while_open},
            {"panel/two at once", demand::interface, two_at_once},
            // A click may open a dialog that waits for an answer.
            {"panel/gestures are balanced", demand::interface, balanced, demand::hosts},
            {"panel/parent goes first", demand::hosts, parent_goes_first},
            {"panel/closed with its plug-in", demand::hosts, closed_while_open}};
}
