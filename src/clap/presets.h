#pragma once
/// The registrations that the library brings along, as presets: a host lists them without an
/// instrument, and loads one into an instrument by its key. What lists is [setup], by one thread of
/// the host's choice; loading is [ui].

#include "clap/interface.h"

extern const clap_preset_discovery_factory clap_presets;
extern const clap_plugin_preset_load clap_preset_loading;
