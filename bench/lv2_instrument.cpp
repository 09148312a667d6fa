#include "bench/lv2_instrument.h"

#include <lv2/atom/util.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/midi/midi.h>
#include <lv2/options/options.h>
#include <lv2/parameters/parameters.h>
#include <lv2/resize-port/resize-port.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

std::uint32_t lv2_instrument::port::room() const {
    return static_cast<std::uint32_t>(atoms.size() * sizeof(atoms[0]) - sizeof(LV2_Atom));
}

lv2_instrument::lv2_instrument(const char* uri, double rate_hz, int frames_per_block)
    : block_frames{frames_per_block},
      midi_event{number(LV2_MIDI__MidiEvent)},
      sequence{number(LV2_ATOM__Sequence)},
      chunk{number(LV2_ATOM__Chunk)},
      map{this,
          [](LV2_URID_Map_Handle handle, const char* mapped) {
              return static_cast<lv2_instrument*>(handle)->number(mapped);
          }},
      schedule{this, [](LV2_Worker_Schedule_Handle handle, std::uint32_t size, const void* data) {
                   return static_cast<lv2_instrument*>(handle)->work(size, data);
               }} {
    const auto need = [uri](bool is_there, const char* otherwise) {
        if (!is_there)
            throw std::runtime_error{std::string{uri} + otherwise};
    };
    lilv_world_load_all(world.get());
    plugin = lilv_plugins_get_by_uri(lilv_world_get_all_plugins(world.get()), node(uri).get());
    need(plugin, " is in no bundle here");
    instantiate(rate_hz);
    need(instance != nullptr, " cannot be instantiated");
    worker = static_cast<const LV2_Worker_Interface*>(
        lilv_instance_get_extension_data(instance.get(), LV2_WORKER__interface));

    std::vector<float> defaults(lilv_plugin_get_num_ports(plugin));
    lilv_plugin_get_port_ranges_float(plugin, nullptr, nullptr, defaults.data());
    ports.resize(defaults.size());
    for (std::uint32_t i = 0; i < ports.size(); ++i)
        connect_port(i, defaults[i]);
    need(midi_input && !outputs.empty(), " hears no MIDI or makes no sound");
    empty_sequences();
    lilv_instance_activate(instance.get());
}

lv2_instrument::~lv2_instrument() { lilv_instance_deactivate(instance.get()); }

lv2_instrument::lilv_owned<LilvNode> lv2_instrument::node(const char* uri) const {
    return lilv_owned<LilvNode>{lilv_new_uri(world.get(), uri)};
}

LV2_URID lv2_instrument::number(const char* uri) {
    const std::scoped_lock lock{mutex};
    return numbers.try_emplace(uri, static_cast<LV2_URID>(numbers.size() + 1)).first->second;
}

void lv2_instrument::instantiate(double rate_hz) {
    const auto rate = static_cast<float>(rate_hz);
    const auto option = [this](const char* name, const char* type, const auto& value) {
        return LV2_Options_Option{LV2_OPTIONS_INSTANCE, 0,     number(name), sizeof value,
                                  number(type),         &value};
    };
    const LV2_Options_Option options[] = {
        option(LV2_PARAMETERS__sampleRate, LV2_ATOM__Float, rate),
        option(LV2_BUF_SIZE__minBlockLength, LV2_ATOM__Int, block_frames),
        option(LV2_BUF_SIZE__nominalBlockLength, LV2_ATOM__Int, block_frames),
        option(LV2_BUF_SIZE__maxBlockLength, LV2_ATOM__Int, block_frames),
        {}};
    const LV2_Feature features[] = {
        {LV2_URID__map, &map},
        {LV2_WORKER__schedule, &schedule},
        {LV2_OPTIONS__options, const_cast<LV2_Options_Option*>(options)},
        {LV2_BUF_SIZE__boundedBlockLength, nullptr},
        {LV2_BUF_SIZE__fixedBlockLength, nullptr}};
    std::vector<const LV2_Feature*> offered;
    for (const auto& feature : features)
        offered.push_back(&feature);
    offered.push_back(nullptr);
    instance.reset(lilv_plugin_instantiate(plugin, rate_hz, offered.data()));
}

void lv2_instrument::connect_port(std::uint32_t index, float value) {
    const auto* described = lilv_plugin_get_port_by_index(plugin, index);
    const auto is = [&](const char* what) {
        return lilv_port_is_a(plugin, described, node(what).get());
    };
    auto& connected = ports[index];
    connected.is_input = is(LV2_CORE__InputPort);
    void* buffer = nullptr;
    if (is(LV2_ATOM__AtomPort)) {
        const lilv_owned<LilvNode> least{
            lilv_port_get(plugin, described, node(LV2_RESIZE_PORT__minimumSize).get())};
        const int nb_bytes = std::max(least ? lilv_node_as_int(least.get()) : 0, 8192);
        connected.atoms.resize(static_cast<std::size_t>(nb_bytes) / sizeof(connected.atoms[0]));
        if (connected.is_input
            && lilv_port_supports_event(plugin, described, node(LV2_MIDI__MidiEvent).get()))
            midi_input = &connected;
        buffer = connected.atoms.data();
    } else {
        connected.values.assign(
            is(LV2_CORE__ControlPort) ? 1 : static_cast<std::size_t>(block_frames), value);
        if (!connected.is_input && is(LV2_CORE__AudioPort))
            outputs.push_back(index);
        buffer = connected.values.data();
    }
    lilv_instance_connect_port(instance.get(), index, buffer);
}

/// Inputs hold no events, outputs say how many bytes they take.
void lv2_instrument::empty_sequences() {
    for (auto& emptied : ports)
        if (!emptied.atoms.empty())
            *emptied.events() = {emptied.is_input
                                     ? LV2_Atom{sizeof(LV2_Atom_Sequence_Body), sequence}
                                     : LV2_Atom{emptied.room(), chunk},
                                 {}};
}

bool lv2_instrument::send(std::array<std::uint8_t, 3> message) {
    struct {
        LV2_Atom_Event event;
        std::array<std::uint8_t, 3> bytes;
    } sent{{{0}, {sizeof message, midi_event}}, message};
    return lv2_atom_sequence_append_event(midi_input->events(), midi_input->room(), &sent.event);
}

void lv2_instrument::render_block() {
    lilv_instance_run(instance.get(), static_cast<std::uint32_t>(block_frames));
    for (const auto& response : std::exchange(responses, {}))
        worker->work_response(lilv_instance_get_handle(instance.get()),
                              static_cast<std::uint32_t>(response.size()), response.data());
    if (worker && worker->end_run)
        worker->end_run(lilv_instance_get_handle(instance.get()));
    empty_sequences();
}

LV2_Worker_Status lv2_instrument::work(std::uint32_t size, const void* data) {
    if (!worker)
        return LV2_WORKER_ERR_UNKNOWN;
    const auto respond = [](LV2_Worker_Respond_Handle handle, std::uint32_t nb_bytes,
                            const void* response) {
        const auto* bytes = static_cast<const std::byte*>(response);
        static_cast<lv2_instrument*>(handle)->responses.emplace_back(bytes, bytes + nb_bytes);
        return LV2_WORKER_SUCCESS;
    };
    return worker->work(lilv_instance_get_handle(instance.get()), respond, this, size, data);
}
