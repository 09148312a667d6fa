#pragma once
/// A host gives the notes that it begins addresses, by which it releases them and is told of their
/// end. Notes of one key on several channels share the key, as in MIDI: whoever is released first
/// lets go of it, and all end with it. All is [audio].

#include "clap/interface.h"

#include <array>
#include <bit>
#include <cstdint>

constexpr int nb_midi_notes = 128;
constexpr int nb_midi_channels = 16;

class voices {
public:
    [[nodiscard]] bool empty() const noexcept NONBLOCKING { return nb_voices == 0; }

    void clear() noexcept NONBLOCKING {
        channels.fill(0);
        nb_voices = 0;
    }

    /// Returns whether the address is one that a note can begin with. One that has begun on the
    /// same channel and key is forgotten.
    bool begin(const clap_event_note& note) noexcept NONBLOCKING;

    /// Calls the function with the note that began each voice that the address, of which each part
    /// may be -1, means. It may end that voice.
    template <typename Function>
    void for_each(const clap_event_note& address, Function function) noexcept NONBLOCKING {
        if (address.port_index > 0)
            return;
        for (std::int16_t key = 0; key < nb_midi_notes && !empty(); ++key) {
            if (address.key != -1 && address.key != key)
                continue;
            const auto index = static_cast<std::size_t>(key);
            for (unsigned rest = channels[index]; rest != 0; rest &= rest - 1) {
                const auto channel = static_cast<std::int16_t>(std::countr_zero(rest));
                const std::int32_t id = ids[index][static_cast<std::size_t>(channel)];
                // A note without an id would sound on for ever if ids did not mean it.
                if ((address.channel == -1 || address.channel == channel)
                    && (address.note_id == -1 || id == -1 || address.note_id == id))
                    function(clap_event_note{{}, id, 0, channel, key, 0});
            }
        }
    }

    void end(const clap_event_note& ended) noexcept NONBLOCKING;

private:
    std::array<std::uint16_t, nb_midi_notes> channels{}; ///< bit c: a voice of channel c
    std::array<std::array<std::int32_t, nb_midi_channels>, nb_midi_notes> ids{};
    int nb_voices = 0;
};
