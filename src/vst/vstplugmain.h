#pragma once
/// The door of the library: the function that a host calls for an instrument. All is [setup].

#include "vst/audioeffect.h"

/// Returns the record of a new effect, which lives until the host sends effClose; null when the
/// caller is no VST host or nothing could be created. The library exports it as "main".
extern "C" __attribute__((visibility("default"))) AEffect* VSTCALLBACK
VSTPluginMain(audioMasterCallback audioMaster);

/// The instrument's factory, which the library's maker supplies. Returns null or a whole effect,
/// which belongs to the host.
[[nodiscard]] AudioEffect* createEffectInstance(audioMasterCallback audioMaster);
