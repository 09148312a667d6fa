#include "clap/ports.h"

#include "clap/plugin.h"

namespace {

bool get_output(const clap_plugin*, std::uint32_t index, bool is_input,
                clap_audio_port_info* info) {
    if (is_input || index != 0)
        return false;
    *info = {.id = 0,
             .name = "Output",
             .flags = CLAP_AUDIO_PORT_IS_MAIN,
             .channel_count = 2,
             .port_type = CLAP_PORT_STEREO,
             .in_place_pair = CLAP_INVALID_ID};
    return true;
}

bool get_keys(const clap_plugin*, std::uint32_t index, bool is_input, clap_note_port_info* info) {
    if (!is_input || index != 0)
        return false;
    *info = {.id = 0,
             .supported_dialects = CLAP_NOTE_DIALECT_CLAP | CLAP_NOTE_DIALECT_MIDI,
             .preferred_dialect = CLAP_NOTE_DIALECT_CLAP,
             .name = "Keys"};
    return true;
}

/// Every key has a voice, and one only.
bool get_voices(const clap_plugin* plugin, clap_voice_info* info) {
    std::uint32_t nb_keys = 0;
    for (int note = 0; note < nb_midi_notes; ++note)
        nb_keys += player_has_key(&clap_instrument_of(plugin).played.shown(), note);
    *info = {.voice_count = nb_keys, .voice_capacity = nb_keys, .flags = 0};
    return true;
}

} // namespace

const clap_plugin_audio_ports clap_audio_ports{
    .count = [](const clap_plugin*, bool is_input) { return is_input ? 0u : 1u; },
    .get = get_output};
const clap_plugin_note_ports clap_note_ports{
    .count = [](const clap_plugin*, bool is_input) { return is_input ? 1u : 0u; }, .get = get_keys};
const clap_plugin_voice_info clap_voices{get_voices};
