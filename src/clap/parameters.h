#pragma once
/// The registry's parameters as the host sees them: the index is the id, all go from 0 to 1, and
/// switches have the two values 0 and 1. There are no cookies: an id is as quick. The host's calls
/// are [ui], flush but for that.

#include "clap/interface.h"
#include "player/player.h"

#include <optional>

struct clap_instrument;

extern const clap_plugin_params clap_parameters;

/// The parameter's value within its range; the id is one. [any]
[[nodiscard]] double clap_shown_value(const player* p_player, clap_id id) noexcept NONBLOCKING;

/// Whether the event would move its parameter. [audio]
[[nodiscard]] bool clap_parameter_moves(const player* p_player,
                                        const clap_event_param_value& event) noexcept NONBLOCKING;

/// An event of the whole instrument, but for its header. [audio]
[[nodiscard]] clap_event_param_value clap_value_event(clap_id id,
                                                      double value) noexcept NONBLOCKING;

/// Tells the host of what the user has done on the panel. [audio], or as flush
void clap_send_edits(clap_instrument& instrument,
                     const clap_output_events* list) noexcept NONBLOCKING;

/// Sets the event's parameter to the nearest value that it has. Values that are not finite and ids
/// that nobody has change nothing. [audio]
void clap_set_parameter(player* p_player, const clap_event_param_value& event) noexcept NONBLOCKING;

/// Has the host read all values anew. [ui]
void clap_tell_of_values(const clap_host* host);
