#pragma once
/// What the library and the bundle's data files say of it must agree upon.

#include <cstdint>

#define TINDELWAX_URI "https://quenmar.example/tindelwax"
#define TINDELWAX_PANEL_URI TINDELWAX_URI "#panel"

enum lv2_port : std::uint32_t {
    port_midi,
    port_left, ///< the engine's right, which is every format's first output
    port_right,
    port_first_parameter, ///< that of index 0 in the registry; the others follow
};
