#pragma once
/// The plug-in that an LV2 host talks to: it adapts the host's calls to the instrument.
///
/// A port's value is taken when it is another than the port last said, so that what MIDI moved
/// stays until the host moves it too; beyond its range it counts as the range's end. The state
/// keeps beside the instrument what the ports said: a project that is loaded again says the same,
/// and what MIDI moved is there again.

#include "instrument/instrument.h"
#include "realtime/nonblocking.h"

#include <atomic>
#include <cstdint>
#include <lv2/atom/atom.h>
#include <lv2/state/state.h>
#include <lv2/urid/urid.h>
#include <vector>

class lv2_organ {
public:
    lv2_organ(double sampling_rate, const LV2_URID_Map& map); ///< [setup]

    /// The memory of a port, see ports.h, or null; a port that is not there is ignored. [audio]
    void connect_port(std::uint32_t port, void* memory) noexcept NONBLOCKING;

    void activate(); ///< silences what was played before [setup]

    /// Plays a block. Without both outputs connected, or for 0 frames, its notes wait for the next.
    /// [audio]
    void run(std::uint32_t nb_frames) noexcept NONBLOCKING;

    /// May be called beside run. What the ports said is left out until all have said something.
    /// [ui]
    LV2_State_Status save(LV2_State_Store_Function store, LV2_State_Handle host) const;

    /// Where there is nothing to restore, as with a preset, the ports' next values are taken, all
    /// of them; where there is no state that could be taken over, nothing changes. [setup]
    LV2_State_Status restore(LV2_State_Retrieve_Function retrieve, LV2_State_Handle host);

    instrument played{}; ///< for its panel, too

private:
    struct parameter_port {
        const float* p_value = nullptr; ///< the host's; null until connected
        std::atomic<float> said;        ///< its latest value that was taken; not a number before
    };
    struct urids {
        explicit urids(const LV2_URID_Map& map);
        LV2_URID atom_float, atom_sequence, atom_string, atom_vector, midi_event;
        LV2_URID state_instrument, state_ports; ///< the state's properties
    };

    void follow_ports(player& playing) noexcept NONBLOCKING;
    void receive_midi(player& playing) const noexcept NONBLOCKING;
    void restore_ports(LV2_State_Retrieve_Function retrieve, LV2_State_Handle host);

    urids urid;
    std::vector<parameter_port> parameter_ports;
    const LV2_Atom_Sequence* p_midi = nullptr;
    float* p_left = nullptr;
    float* p_right = nullptr;
};
