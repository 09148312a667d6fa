#pragma once
/// Opens the sound system that the player wants, or whatever is there. All is [ui].

#include "live/sound_system.h"

class sound_source {
public:
    sound_source(live_instrument& instrument, const sound_wishes& wishes)
        : instrument_{instrument}, wishes_{wishes} {}

    /// Null if there is nothing. Once something was there, only that is looked for.
    [[nodiscard]] std::unique_ptr<sound_system> open();

    /// That there is nothing, and what to do about it.
    [[nodiscard]] std::string absence() const;

private:
    live_instrument& instrument_;
    sound_wishes wishes_;
};
