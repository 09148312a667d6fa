#pragma once
/// An instrument is a player that can be made anew while it plays: a project that is loaded brings
/// another seed, and with it other tolerances, and another rate is a new engine of the same seed,
/// so that what sounds never depends on what was before. It is what the newer plug-in formats hold.
///
/// There is one main thread, on which [setup] and [ui] run, and at most one audio thread beside it.

#include "instrument/saved_state.h"
#include "player/player.h"
#include "realtime/nonblocking.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

class instrument {
public:
    /// Draws its seed from the system, where the environment asks for none. [setup]
    instrument();
    explicit instrument(std::uint32_t its_seed); ///< [setup]
    ~instrument();
    instrument(const instrument&) = delete;
    instrument& operator=(const instrument&) = delete;

    /// The next blocks have that rate, in Hz; see player_set_sampling_rate for the limits. No audio
    /// thread runs. [setup]
    void set_sampling_rate(double rate);

    /// The player that the next block is asked of, and that takes its messages. [audio]
    player& playing() noexcept NONBLOCKING;

    /// The same as the main thread sees it: values are read here, and moved. [ui]
    [[nodiscard]] player& shown() noexcept { return *newest; }

    [[nodiscard]] std::string save() const; ///< [ui]

    /// Returns whether the text is a state that could be taken over; else nothing has changed. The
    /// audio thread may play on meanwhile: it goes over to another player, whose keys are all up,
    /// where the seed is another. [ui]
    bool load(std::string_view text);

private:
    [[nodiscard]] std::unique_ptr<player> make() const;
    void replace(const saved_state& state);

    std::uint32_t seed;
    float sampling_rate = 0; ///< 0 until set
    player* newest;          ///< the main thread's: one of the next two
    std::atomic<player*> coming = nullptr;
    player* current;                        ///< the audio thread's
    std::atomic<player*> leaving = nullptr; ///< that the audio thread will not touch again
};
