#include "clap/voices.h"

bool voices::begin(const clap_event_note& note) noexcept {
    if (note.port_index != 0 || note.key < 0 || note.key >= nb_midi_notes || note.channel < 0
        || note.channel >= nb_midi_channels)
        return false;
    const auto key = static_cast<std::size_t>(note.key);
    nb_voices += (channels[key] >> note.channel & 1) == 0;
    channels[key] = static_cast<std::uint16_t>(channels[key] | 1 << note.channel);
    ids[key][static_cast<std::size_t>(note.channel)] = note.note_id;
    return true;
}

void voices::end(const clap_event_note& ended) noexcept {
    std::uint16_t& of_key = channels[static_cast<std::size_t>(ended.key)];
    of_key = static_cast<std::uint16_t>(of_key & ~(1 << ended.channel));
    --nb_voices;
}
