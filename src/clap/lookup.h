#pragma once
/// What host and plug-in ask of each other by its published identifier. All is [any].

#include "clap/interface.h"

#include <span>
#include <string_view>

struct clap_offer {
    std::string_view id;
    const void* offered;
};

/// Null for an identifier that is not among them, and for none.
inline const void* clap_look_up(std::span<const clap_offer> offers, const char* id) {
    for (const clap_offer& one : offers)
        if (id && one.id == id)
            return one.offered;
    return nullptr;
}

/// The host's extension, or null.
template <typename Extension>
const Extension* clap_host_extension(const clap_host* host, const char* id) {
    return static_cast<const Extension*>(host->get_extension(host, id));
}
