#pragma once
/// The plug-in that a CLAP host talks to: it adapts the host's calls to the instrument. This is the
/// object behind the record that the host holds; each of its extensions has a file of its own.

#include "clap/interface.h"
#include "clap/panel_window.h"
#include "clap/voices.h"
#include "instrument/instrument.h"
#include "realtime/ring.h"

#include <cstdint>
#include <memory>

extern const clap_plugin_descriptor clap_descriptor;

/// What the user does on the panel.
struct clap_edit {
    clap_event_type type = CLAP_EVENT_PARAM_VALUE; ///< or a gesture's begin or end
    clap_id param_id = 0;
    double value = 0;
};

struct clap_instrument {
    explicit clap_instrument(const clap_host* host);

    clap_plugin interface;       ///< that the host has
    const clap_host* p_host;     ///< outlives this
    instrument played{};         ///< its main and audio threads are the host's
    voices sounding{};           ///< the audio thread's
    std::uint32_t tail_long = 0; ///< frames at the rate that is set

    ring<clap_edit> edits{}; ///< made on the panel, for the host

    /// The main thread's; null while there is none. The last: as it goes, it may still tell of
    /// edits.
    std::unique_ptr<clap_panel_window> window{};
};

/// [any]
inline clap_instrument& clap_instrument_of(const clap_plugin* plugin) noexcept NONBLOCKING {
    return *static_cast<clap_instrument*>(plugin->plugin_data);
}
