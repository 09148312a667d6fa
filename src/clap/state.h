#pragma once
/// The instrument's state in the streams of a host. All is [ui].

#include "clap/interface.h"

extern const clap_plugin_state clap_state;
