#pragma once
/// The host's blocks and the events in them. [audio]

#include "clap/interface.h"

clap_process_status clap_process_block(const clap_plugin* plugin,
                                       const clap_process* process) noexcept NONBLOCKING;
