#include "platform/key_strokes.h"

#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr auto longest_interval = 100ms;                      // of repeats
constexpr auto shortest_delay = 200ms, longest_delay = 700ms; // before the first

} // namespace

std::u32string key_strokes::take(const std::u32string& characters, time now) {
    std::u32string struck;
    for (const char32_t character : characters) {
        const bool is_same = character == last_;
        const auto since = now - std::exchange(last_time_, now);
        if (std::exchange(waits_, false) && !is_same)
            struck += last_;
        waits_ = is_same && since >= shortest_delay && since < longest_delay;
        if (!waits_ && !(is_same && since < longest_interval))
            struck += character;
        last_ = character;
    }
    if (waits_ && now - last_time_ >= longest_interval) {
        waits_ = false;
        struck += last_;
    }
    return struck;
}
