#pragma once
/// The host's lists of events as the audio thread goes through them. All is [audio].

#include "clap/interface.h"

#include <cstdint>

/// The event as what its type says, or null where it is none of that type, or is cut short.
template <typename Event>
const Event* clap_event_as(const clap_event_header* event,
                           clap_event_type type) noexcept NONBLOCKING {
    const bool is_one = event && event->space_id == CLAP_CORE_EVENT_SPACE_ID && event->type == type
                        && event->size >= sizeof(Event);
    return is_one ? reinterpret_cast<const Event*>(event) : nullptr;
}

/// The list may be null.
inline std::uint32_t clap_nb_events(const clap_input_events* list) noexcept NONBLOCKING {
    return list ? list->size(list) : 0;
}

/// Sends an event; the header is filled in here. Returns false where the host does not take it.
/// Frames must not go back.
template <typename Event>
bool clap_send(const clap_output_events* list, Event event, clap_event_type type,
               std::uint32_t frame, std::uint32_t flags = 0) noexcept NONBLOCKING {
    event.header = {sizeof event, frame, CLAP_CORE_EVENT_SPACE_ID, type, flags};
    return list && list->try_push(list, &event.header);
}
