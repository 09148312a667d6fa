#include "lv2/organ.h"

#include "lv2/atom_events.h"
#include "lv2/ports.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <lv2/midi/midi.h>
#include <string_view>

namespace {

constexpr std::uint32_t short_message_size = 3; ///< of all that the instrument listens to
constexpr std::uint32_t state_flags = LV2_STATE_IS_POD | LV2_STATE_IS_PORTABLE;
constexpr std::size_t vector_head_size = 2; ///< in words: the size and the type of the elements
constexpr float rounding = 1e-8f; ///< of hosts that keep values as texts of eight decimals
constexpr float nothing_said = std::numeric_limits<float>::quiet_NaN();

} // namespace

lv2_organ::urids::urids(const LV2_URID_Map& map)
    : atom_float(map.map(map.handle, LV2_ATOM__Float)),
      atom_sequence(map.map(map.handle, LV2_ATOM__Sequence)),
      atom_string(map.map(map.handle, LV2_ATOM__String)),
      atom_vector(map.map(map.handle, LV2_ATOM__Vector)),
      midi_event(map.map(map.handle, LV2_MIDI__MidiEvent)),
      state_instrument(map.map(map.handle, TINDELWAX_URI "#instrument")),
      state_ports(map.map(map.handle, TINDELWAX_URI "#ports")) {}

lv2_organ::lv2_organ(double sampling_rate, const LV2_URID_Map& map)
    : urid(map), parameter_ports(played.shown().p_control->parameters.size()) {
    for (parameter_port& port : parameter_ports)
        port.said.store(nothing_said, std::memory_order_relaxed);
    played.set_sampling_rate(sampling_rate);
}

void lv2_organ::connect_port(std::uint32_t port, void* memory) noexcept {
    if (port == port_midi)
        p_midi = static_cast<const LV2_Atom_Sequence*>(memory);
    else if (port == port_left)
        p_left = static_cast<float*>(memory);
    else if (port == port_right)
        p_right = static_cast<float*>(memory);
    else if (port - port_first_parameter < parameter_ports.size())
        parameter_ports[port - port_first_parameter].p_value = static_cast<const float*>(memory);
}

void lv2_organ::activate() { player_silence(&played.playing()); }

void lv2_organ::run(std::uint32_t nb_frames) noexcept {
    player& playing = played.playing();
    follow_ports(playing);
    receive_midi(playing);
    if (nb_frames > 0 && p_left && p_right)
        player_process(&playing, {p_left, nb_frames}, {p_right, nb_frames});
}

void lv2_organ::follow_ports(player& playing) noexcept {
    for (std::size_t i = 0; i < parameter_ports.size(); ++i) {
        auto& [p_value, said] = parameter_ports[i];
        if (!p_value || !std::isfinite(*p_value)
            || std::abs(*p_value - said.load(std::memory_order_relaxed)) <= rounding)
            continue;
        said.store(*p_value, std::memory_order_relaxed);
        player_set_parameter(&playing, static_cast<int>(i), std::min(*p_value, 1.0f));
    }
}

void lv2_organ::receive_midi(player& playing) const noexcept {
    if (!p_midi || p_midi->atom.type != urid.atom_sequence)
        return;
    auto bytes = atom_events(*p_midi);
    while (const LV2_Atom_Event* const event = take_event(bytes)) {
        if (event->body.type != urid.midi_event || event->body.size != short_message_size)
            continue;
        const std::int64_t frame = event->time.frames;
        player_receive_midi_event(
            &playing, reinterpret_cast<const char*>(event + 1),
            static_cast<int>(std::clamp<std::int64_t>(frame, 0, std::numeric_limits<int>::max())));
    }
}

LV2_State_Status lv2_organ::save(LV2_State_Store_Function store, LV2_State_Handle host) const {
    const std::string text = played.save();
    const auto status = store(host, urid.state_instrument, text.c_str(), text.size() + 1,
                              urid.atom_string, state_flags);
    std::vector<std::uint32_t> words{sizeof(float), urid.atom_float};
    for (const parameter_port& port : parameter_ports) {
        const float said = port.said.load(std::memory_order_relaxed);
        if (status != LV2_STATE_SUCCESS || std::isnan(said))
            return status;
        words.push_back(std::bit_cast<std::uint32_t>(said));
    }
    return store(host, urid.state_ports, words.data(), words.size() * sizeof words[0],
                 urid.atom_vector, state_flags);
}

LV2_State_Status lv2_organ::restore(LV2_State_Retrieve_Function retrieve, LV2_State_Handle host) {
    std::size_t size = 0;
    std::uint32_t type = 0, flags = 0;
    const auto* text =
        static_cast<const char*>(retrieve(host, urid.state_instrument, &size, &type, &flags));
    if (text && type != urid.atom_string)
        return LV2_STATE_ERR_BAD_TYPE;
    // The text ends before its zero byte.
    if (text && !played.load({text, size - std::min<std::size_t>(size, 1)}))
        return LV2_STATE_ERR_UNKNOWN;
    restore_ports(retrieve, host);
    return LV2_STATE_SUCCESS;
}

void lv2_organ::restore_ports(LV2_State_Retrieve_Function retrieve, LV2_State_Handle host) {
    std::size_t size = 0;
    std::uint32_t type = 0, flags = 0;
    const auto* words =
        static_cast<const std::uint32_t*>(retrieve(host, urid.state_ports, &size, &type, &flags));
    const bool is_known = words && type == urid.atom_vector
                          && size == (vector_head_size + parameter_ports.size()) * sizeof words[0]
                          && words[0] == sizeof(float) && words[1] == urid.atom_float;
    for (std::size_t i = 0; i < parameter_ports.size(); ++i)
        parameter_ports[i].said.store(is_known ? std::bit_cast<float>(words[vector_head_size + i])
                                               : nothing_said,
                                      std::memory_order_relaxed);
}
