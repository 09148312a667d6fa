#include "plugin/lv2_plugin.h"

#include "failure/printable.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <lv2/atom/util.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/midi/midi.h>
#include <lv2/options/options.h>
#include <lv2/parameters/parameters.h>
#include <lv2/port-props/port-props.h>
#include <lv2/resize-port/resize-port.h>
#include <lv2/units/units.h>
#include <utility>

namespace {

constexpr int least_atom_bytes = 8192;

} // namespace

std::uint32_t lv2_plugin::port::room() const {
    return static_cast<std::uint32_t>(atoms.size() * sizeof(atoms[0]) - sizeof(LV2_Atom));
}

lv2_plugin::lv2_plugin(const std::filesystem::path& bundle)
    : plugin{bundle},
      folder_{std::filesystem::absolute(bundle).string() + "/"},
      midi_event_{number(LV2_MIDI__MidiEvent)},
      sequence_{number(LV2_ATOM__Sequence)},
      chunk_{number(LV2_ATOM__Chunk)},
      map_{this,
           [](LV2_URID_Map_Handle handle, const char* mapped) {
               return static_cast<lv2_plugin*>(handle)->number(mapped);
           }},
      unmap_{this, [](LV2_URID_Unmap_Handle handle,
                      LV2_URID mapped) { return static_cast<lv2_plugin*>(handle)->uri(mapped); }},
      schedule_{this, [](LV2_Worker_Schedule_Handle handle, std::uint32_t size, const void* data) {
                    return static_cast<lv2_plugin*>(handle)->work(size, data);
                }} {
    const owned_node uri{lilv_new_file_uri(world_.get(), nullptr, folder_.c_str())};
    lilv_world_load_bundle(world_.get(), uri.get());
    const LilvPlugins* const found = lilv_world_get_all_plugins(world_.get());
    for (LilvIter* i = lilv_plugins_begin(found); !lilv_plugins_is_end(found, i);
         i = lilv_plugins_next(found, i)) {
        plugin_ = lilv_plugins_get(found, i);
        if (describe_ports())
            break;
        plugin_ = nullptr;
    }
    if (!plugin_)
        throw failure{exit_misused, bundle.string() + " holds no LV2 instrument"};
    editor_.attach(world_.get(), plugin_);
}

lv2_plugin::~lv2_plugin() {
    editor_.close();
    stop();
}

owned_node lv2_plugin::node(const char* uri) const {
    return owned_node{lilv_new_uri(world_.get(), uri)};
}

std::string lv2_plugin::text(LilvNode* said) {
    const owned_node owned{said};
    return owned ? printable(lilv_node_as_string(owned.get())) : "";
}

LV2_URID lv2_plugin::number(const char* uri) {
    const std::scoped_lock lock{mutex_};
    return numbers_.try_emplace(uri, static_cast<LV2_URID>(numbers_.size() + 1)).first->second;
}

const char* lv2_plugin::uri(LV2_URID number) {
    const std::scoped_lock lock{mutex_};
    const auto found =
        std::ranges::find(numbers_, number, [](const auto& pair) { return pair.second; });
    return found == numbers_.end() ? nullptr : found->first.c_str();
}

bool lv2_plugin::describe_ports() {
    ports_.clear();
    parameters_.clear();
    inputs_.clear();
    outputs_.clear();
    const std::size_t nb_ports = lilv_plugin_get_num_ports(plugin_);
    std::vector<float> least(nb_ports), most(nb_ports), usual(nb_ports);
    lilv_plugin_get_port_ranges_float(plugin_, least.data(), most.data(), usual.data());
    bool hears_midi = false;
    for (std::uint32_t i = 0; i < nb_ports; ++i) {
        const LilvPort* described = lilv_plugin_get_port_by_index(plugin_, i);
        const auto is = [&](const char* what) {
            return lilv_port_is_a(plugin_, described, node(what).get());
        };
        port& added = ports_.emplace_back();
        added.described = described;
        added.is_input = is(LV2_CORE__InputPort);
        added.is_control = is(LV2_CORE__ControlPort);
        if (is(LV2_ATOM__AtomPort)) {
            const owned_node asked{
                lilv_port_get(plugin_, described, node(LV2_RESIZE_PORT__minimumSize).get())};
            const int nb_bytes =
                std::max(asked ? lilv_node_as_int(asked.get()) : 0, least_atom_bytes);
            added.atoms.resize(static_cast<std::size_t>(nb_bytes) / sizeof(added.atoms[0]));
            hears_midi = hears_midi
                         || (added.is_input
                             && lilv_port_supports_event(plugin_, described,
                                                         node(LV2_MIDI__MidiEvent).get()));
        } else if (added.is_control) {
            added.values.assign(1, std::isfinite(usual[i]) ? usual[i] : 0.0f);
            if (added.is_input && std::isfinite(least[i]) && std::isfinite(most[i])
                && least[i] < most[i]
                && !lilv_port_has_property(plugin_, described,
                                           node(LV2_PORT_PROPS__notOnGUI).get()))
                parameters_.push_back({i, least[i], most[i]});
        } else if (is(LV2_CORE__AudioPort)) {
            (added.is_input ? inputs_ : outputs_).push_back(i);
        }
    }
    return hears_midi && !outputs_.empty();
}

std::string lv2_plugin::name() { return text(lilv_plugin_get_name(plugin_)); }

std::string lv2_plugin::id() { return printable(lilv_node_as_uri(lilv_plugin_get_uri(plugin_))); }

std::vector<plugin_fact> lv2_plugin::facts() {
    const auto value = [this](const char* predicate) {
        const owned_node subject{lilv_node_duplicate(lilv_plugin_get_uri(plugin_))};
        return text(lilv_world_get(world_.get(), subject.get(), node(predicate).get(), nullptr));
    };
    return {
        {"vendor", text(lilv_plugin_get_author_name(plugin_))},
        {"version", value(LV2_CORE__minorVersion) + "." + value(LV2_CORE__microVersion)},
        {"id", id()},
        {"license", value("http://usefulinc.com/ns/doap#license")},
        {"category",
         text(lilv_node_duplicate(lilv_plugin_class_get_label(lilv_plugin_get_class(plugin_))))},
        {"channels", std::to_string(nb_inputs()) + " in, " + std::to_string(nb_outputs()) + " out"},
        {"parameters", std::to_string(nb_parameters())}};
}

int lv2_plugin::nb_parameters() const { return static_cast<int>(parameters_.size()); }

std::string lv2_plugin::parameter_name(int index) {
    const port& named = ports_[parameters_[static_cast<std::size_t>(index)].number];
    return text(lilv_port_get_name(plugin_, named.described));
}

/// A scale point's name, or the number with its unit.
std::string lv2_plugin::parameter_text(int index) {
    port& told = ports_[parameters_[static_cast<std::size_t>(index)].number];
    const float value = told.value();
    const owned_scale_points points{lilv_port_get_scale_points(plugin_, told.described)};
    for (LilvIter* i = lilv_scale_points_begin(points.get());
         !lilv_scale_points_is_end(points.get(), i); i = lilv_scale_points_next(points.get(), i)) {
        const LilvScalePoint* point = lilv_scale_points_get(points.get(), i);
        if (lilv_node_as_float(lilv_scale_point_get_value(point)) == value)
            return printable(lilv_node_as_string(lilv_scale_point_get_label(point)));
    }
    std::array<char, 32> number{};
    std::snprintf(number.data(), number.size(), "%.6g", static_cast<double>(value));
    const owned_node unit{lilv_port_get(plugin_, told.described, node(LV2_UNITS__unit).get())};
    const std::string symbol =
        unit
            ? text(lilv_world_get(world_.get(), unit.get(), node(LV2_UNITS__symbol).get(), nullptr))
            : "";
    return number.data() + (symbol.empty() ? "" : " " + symbol);
}

float lv2_plugin::parameter(int index) {
    const auto& [number, least, most] = parameters_[static_cast<std::size_t>(index)];
    return (ports_[number].value() - least) / (most - least);
}

void lv2_plugin::set_parameter(int index, float value) {
    const auto& [number, least, most] = parameters_[static_cast<std::size_t>(index)];
    ports_[number].set_value(least + value * (most - least));
}

std::filesystem::path lv2_plugin::library_file() const {
    return lilv_path(lilv_plugin_get_library_uri(plugin_));
}

void lv2_plugin::set_up() {
    const auto rate = static_cast<float>(rate_hz_);
    const std::int32_t nb_frames = block_frames_;
    const auto option = [this](const char* name, const char* type, const auto& value) {
        return LV2_Options_Option{LV2_OPTIONS_INSTANCE, 0,     number(name), sizeof value,
                                  number(type),         &value};
    };
    const LV2_Options_Option options[] = {
        option(LV2_PARAMETERS__sampleRate, LV2_ATOM__Float, rate),
        option(LV2_BUF_SIZE__nominalBlockLength, LV2_ATOM__Int, nb_frames),
        option(LV2_BUF_SIZE__maxBlockLength, LV2_ATOM__Int, nb_frames),
        {}};
    const LV2_Feature features[] = {
        {LV2_URID__map, &map_},
        {LV2_URID__unmap, &unmap_},
        {LV2_WORKER__schedule, &schedule_},
        {LV2_OPTIONS__options, const_cast<LV2_Options_Option*>(options)},
        {LV2_BUF_SIZE__boundedBlockLength, nullptr}};
    std::vector<const LV2_Feature*> offered;
    for (const auto& feature : features)
        offered.push_back(&feature);
    offered.push_back(nullptr);
    editor_.close();
    instance_.reset(); // some cannot be there twice
    instance_.reset(lilv_plugin_instantiate(plugin_, rate_hz_, offered.data()));
    if (!instance_)
        fail("cannot be instantiated");
    worker_ = static_cast<const LV2_Worker_Interface*>(
        lilv_instance_get_extension_data(instance_.get(), LV2_WORKER__interface));
    for (std::uint32_t i = 0; i < ports_.size(); ++i) {
        port& connected = ports_[i];
        if (connected.atoms.empty() && !connected.is_control)
            connected.values.assign(static_cast<std::size_t>(block_frames_), 0.0f);
        void* const buffer = connected.atoms.empty() ? static_cast<void*>(connected.values.data())
                                                     : static_cast<void*>(connected.atoms.data());
        lilv_instance_connect_port(instance_.get(), i, buffer);
        if (connected.is_input && !connected.atoms.empty()
            && lilv_port_supports_event(plugin_, connected.described,
                                        node(LV2_MIDI__MidiEvent).get()))
            midi_input_ = &connected;
    }
    empty_sequences();
    if (window_)
        show_editor();
}

/// An editor may look at the instance itself, which hears its ports as it plays.
bool lv2_plugin::open_editor(void* window) {
    if (!instance_)
        prepare(rate_hz_, block_frames_);
    if (!runs()) {
        start();
        process();
        stop();
    }
    window_ = window;
    if (!show_editor())
        window_ = nullptr;
    return window_;
}

bool lv2_plugin::show_editor() {
    return editor_.open(window_, lilv_instance_get_handle(instance_.get()), map_,
                        [this](panel_edit::step what, std::uint32_t number, float value) {
                            hear(what, number, value);
                        });
}

void lv2_plugin::close_editor() {
    editor_.close();
    window_ = nullptr;
}

void lv2_plugin::idle_editor() {
    for (std::uint32_t i = 0; i < ports_.size(); ++i)
        if (ports_[i].is_control)
            editor_.show(i, ports_[i].value());
    editor_.idle();
}

void lv2_plugin::hear(panel_edit::step what, std::uint32_t number, float value) {
    if (number >= ports_.size() || !ports_[number].is_control || !ports_[number].is_input)
        return;
    if (what == panel_edit::step::sets)
        ports_[number].set_value(value);
    for (std::size_t i = 0; listener_ && i < parameters_.size(); ++i)
        if (parameters_[i].number == number)
            listener_({what, static_cast<int>(i), parameter(static_cast<int>(i))});
}

void lv2_plugin::resume(host_activity) { lilv_instance_activate(instance_.get()); }

void lv2_plugin::suspend() { lilv_instance_deactivate(instance_.get()); }

/// Inputs hold no events, outputs say how many bytes they take.
void lv2_plugin::empty_sequences() {
    for (auto& emptied : ports_)
        if (!emptied.atoms.empty())
            *emptied.events() = {emptied.is_input
                                     ? LV2_Atom{sizeof(LV2_Atom_Sequence_Body), sequence_}
                                     : LV2_Atom{emptied.room(), chunk_},
                                 {}};
}

/// What finds no room is dropped.
void lv2_plugin::send(event_list& events) {
    events.for_each_message([this](message_view message, int frame) {
        std::array<std::uint64_t, 32> memory{}; // short messages, and dumps of some bytes
        auto* const sent = reinterpret_cast<LV2_Atom_Event*>(memory.data());
        if (message.size() > sizeof memory - sizeof *sent)
            return;
        *sent = {{frame}, {static_cast<std::uint32_t>(message.size()), midi_event_}};
        std::ranges::copy(message, reinterpret_cast<std::uint8_t*>(sent + 1));
        lv2_atom_sequence_append_event(midi_input_->events(), midi_input_->room(), sent);
    });
}

void lv2_plugin::process(channel_memory inputs, channel_memory outputs, int nb_frames) {
    for (std::size_t i = 0; i < inputs.size(); ++i)
        lilv_instance_connect_port(instance_.get(), inputs_[i], inputs[i]);
    for (std::size_t i = 0; i < outputs.size(); ++i)
        lilv_instance_connect_port(instance_.get(), outputs_[i], outputs[i]);
    lilv_instance_run(instance_.get(), static_cast<std::uint32_t>(nb_frames));
    for (const auto& response : std::exchange(responses_, {}))
        worker_->work_response(lilv_instance_get_handle(instance_.get()),
                               static_cast<std::uint32_t>(response.size()), response.data());
    if (worker_ && worker_->end_run)
        worker_->end_run(lilv_instance_get_handle(instance_.get()));
    empty_sequences();
}

LV2_Worker_Status lv2_plugin::work(std::uint32_t size, const void* data) {
    if (!worker_)
        return LV2_WORKER_ERR_UNKNOWN;
    const auto respond = [](LV2_Worker_Respond_Handle handle, std::uint32_t nb_bytes,
                            const void* response) {
        const auto* bytes = static_cast<const std::byte*>(response);
        static_cast<lv2_plugin*>(handle)->responses_.emplace_back(bytes, bytes + nb_bytes);
        return LV2_WORKER_SUCCESS;
    };
    return worker_->work(lilv_instance_get_handle(instance_.get()), respond, this, size, data);
}
