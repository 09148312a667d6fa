#pragma once
/// Pages of parameters for a host's eight knobs: the registry's, in its order. All is [ui].

#include "clap/interface.h"

extern const clap_plugin_remote_controls clap_remote_controls;
