#pragma once
/// What makes a live instrument heard and brings it messages: a JACK server, or ALSA. Functions are
/// [ui] unless tagged.

#include "live/live_instrument.h"

struct sound_wishes {
    std::string via{};    ///< "jack" or "alsa"; empty for the first that is there
    std::string device{}; ///< empty for the usual one
    std::string midi{};   ///< a part of the inputs' names; empty for every one that is there
    int rate_hz = 48000;
    int block_frames = 128;
    bool connects = true; ///< ports, as a player would
};

struct sound_status {
    const char* system; ///< in one word
    std::string name;   ///< by which the system knows us
    std::string device; ///< that is heard; empty for none
    int rate_hz;
    int block_frames;
    double delay_ms; ///< from a key to the air, without the converter's own
    double load;     ///< of the time that a block has
    long nb_underruns;
    std::string remark{}; ///< how it could be better
};

/// How a thread gets the priority that the system did not grant.
constexpr const char* no_priority =
    "no real-time priority; add yourself to the audio group and set "
    "rtprio in /etc/security/limits.d/audio.conf";

class sound_system {
public:
    virtual ~sound_system() = default;

    /// Does what is due: connects what came, releases what was held on what went. Returns false if
    /// the sound is gone for good; then its owner ends it and opens another. Called every few
    /// hundredths of a second.
    virtual bool tend() = 0;

    [[nodiscard]] virtual sound_status status() const = 0;

    /// What happened since the last call, a sentence each.
    [[nodiscard]] virtual std::vector<std::string> take_news() = 0;
};

/// Starts the instrument with a JACK server that runs. Null where there is none.
[[nodiscard]] std::unique_ptr<sound_system> jack_system_open(live_instrument& instrument,
                                                             const sound_wishes& wishes);

/// The names of a running server's outputs and of what could play the instrument; without the
/// server, none.
[[nodiscard]] std::vector<std::string> jack_system_list();

/// The same without a server, by ALSA, whose default device desktops lead to theirs. Null where
/// there is no device of that name.
[[nodiscard]] std::unique_ptr<sound_system> alsa_system_open(live_instrument& instrument,
                                                             const sound_wishes& wishes);

/// The names of ALSA's outputs and of its MIDI sources.
[[nodiscard]] std::vector<std::string> alsa_system_list();
