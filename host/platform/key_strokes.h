#pragma once
/// A player's strokes among the characters of a terminal that tells of no releases, where a key
/// that is held sends its character again, after a delay of 200 to 700 ms and then more than ten
/// times a second, until another key is struck. The same character within 100 ms is such a repeat.
/// After a delay it may be the first repeat or a second stroke, which only what follows can tell:
/// it waits, and is a stroke if no repeat came for 100 ms. Any other is one at once. (So a key held
/// just long enough to repeat once counts as struck twice.) All is [ui].

#include <chrono>
#include <string>

class key_strokes {
public:
    using time = std::chrono::steady_clock::time_point;

    /// What was struck by now: of these characters, which just came, and what waited. Called every
    /// few hundredths of a second.
    [[nodiscard]] std::u32string take(const std::u32string& characters, time now);

private:
    char32_t last_ = 0; // character
    time last_time_{};
    bool waits_ = false;
};
