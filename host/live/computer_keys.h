#pragma once
/// A computer's keyboard as a manual: two rows of keys play, as in trackers and audio workstations.
/// From Z to M lies an octave with its black keys above, from Q to P one and a half more; comma and
/// full stop shift both by octaves, Escape silences everything. All is [ui].

#include "live/live_instrument.h"

#include <map>

/// The place of a key, by the numbers that Linux gives them, whatever is printed on it.
using key_code = int;

/// The key where a layout with QWERTY has that character; 0 where it has none that matters here.
[[nodiscard]] key_code key_code_of(char32_t character);

class computer_keys {
public:
    explicit computer_keys(live_instrument& instrument) : instrument_{instrument} {}

    /// Presses that repeat one are no new note.
    void press(key_code key);
    void release(key_code key);

    /// Where nobody tells of releases, each press ends or begins its note.
    void toggle(key_code key);

    void release_all(); ///< as nobody looks at the keyboard any more

private:
    live_instrument& instrument_;
    std::map<key_code, int> held_{}; // and the notes that they began
    int octave_ = 0;
};
