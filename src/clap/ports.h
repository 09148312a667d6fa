#pragma once
/// What goes in and out: notes, and one pair of outputs; and how many notes sound at once. The
/// host's calls are [setup].

#include "clap/interface.h"

extern const clap_plugin_audio_ports clap_audio_ports;
extern const clap_plugin_note_ports clap_note_ports;
extern const clap_plugin_voice_info clap_voices;
