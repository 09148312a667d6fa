/// What an LV2 bundle's data files promise, its library has.

#include "check/rows.h"
#include "check/subject.h"
#include "plugin/lv2_plugin.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <lv2/buf-size/buf-size.h>
#include <lv2/options/options.h>
#include <lv2/presets/presets.h>
#include <lv2/urid/urid.h>
#include <lv2/worker/worker.h>
#include <map>
#include <set>

namespace {

lv2_plugin& lv2_of(const subject& asked) { return static_cast<lv2_plugin&>(asked.tested()); }

/// Calls with the text of each node.
void for_each(const LilvNodes* nodes, const std::function<void(const std::string&)>& take) {
    LILV_FOREACH(nodes, i, nodes)
    take(lilv_node_as_string(lilv_nodes_get(nodes, i)));
}

owned_node node(const lv2_plugin& asked, const char* uri) {
    return owned_node{lilv_new_uri(asked.world(), uri)};
}

void required_features(trial& running) {
    const subject asked(running);
    const std::set<std::string> usual{LV2_URID__map,          LV2_URID__unmap,
                                      LV2_OPTIONS__options,   LV2_WORKER__schedule,
                                      LV2_CORE__isLive,       LV2_BUF_SIZE__boundedBlockLength,
                                      LV2_CORE__inPlaceBroken};
    const owned_nodes required{lilv_plugin_get_required_features(lv2_of(asked).described())};
    for_each(required.get(), [&](const std::string& feature) {
        running.expect(usual.contains(feature), "it requires " + feature + ", which hosts lack");
    });
}

struct port_range {
    float least, most;
};

/// A host keeps what it saves by symbols, and begins with the defaults.
std::map<std::string, port_range> ranges_of(trial& running, const lv2_plugin& plugin) {
    const LilvPlugin* const described = plugin.described();
    const std::uint32_t nb_ports = lilv_plugin_get_num_ports(described);
    std::vector<float> least(nb_ports), most(nb_ports), usual(nb_ports);
    lilv_plugin_get_port_ranges_float(described, least.data(), most.data(), usual.data());
    std::map<std::string, port_range> ranges;
    for (std::uint32_t i = 0; i < nb_ports; ++i) {
        const LilvPort* const port = lilv_plugin_get_port_by_index(described, i);
        const auto is = [&](const char* what) {
            return lilv_port_is_a(described, port, node(plugin, what).get());
        };
        const std::string symbol = lilv_node_as_string(lilv_port_get_symbol(described, port));
        running.doing("port " + symbol);
        running.expect(
            std::ranges::all_of(symbol, [](unsigned char c) { return std::isalnum(c) || c == '_'; })
                && !std::isdigit(static_cast<unsigned char>(symbol[0])),
            "its symbol is none");
        const bool is_knob = is(LV2_CORE__ControlPort) && is(LV2_CORE__InputPort);
        running.expect(
            ranges.try_emplace(symbol, port_range{is_knob ? least[i] : 0, is_knob ? most[i] : 0})
                .second,
            "its symbol is another's, too");
        const owned_node name{lilv_port_get_name(described, port)};
        running.expect(bool(name), "it has no name");
        running.expect(!is_knob || (least[i] <= usual[i] && usual[i] <= most[i]),
                       "its default is out of its range, or has none");
    }
    running.doing("");
    return ranges;
}

void ports(trial& running) {
    const subject asked(running);
    (void)ranges_of(running, lv2_of(asked));
}

/// What a preset says of a port.
struct preset_reader {
    trial& running;
    const std::map<std::string, port_range>& ranges;
    LV2_URID_Map& map;

    /// Whole numbers are written without a point.
    [[nodiscard]] double number(const void* value, std::uint32_t type) const {
        if (type == map.map(map.handle, LV2_ATOM__Int))
            return *static_cast<const std::int32_t*>(value);
        running.expect(type == map.map(map.handle, LV2_ATOM__Float), "a value is no number");
        return static_cast<double>(*static_cast<const float*>(value));
    }

    static void take(const char* symbol, void* self, const void* value, std::uint32_t,
                     std::uint32_t type) {
        const auto& reader = *static_cast<preset_reader*>(self);
        const auto& [running, ranges, map] = reader;
        const auto found = ranges.find(symbol);
        running.expect(found != ranges.end(),
                       std::string{"it sets "} + symbol + ", which is no port");
        const double number = reader.number(value, type);
        running.expect(static_cast<double>(found->second.least) <= number
                           && number <= static_cast<double>(found->second.most),
                       std::string{"it sets "} + symbol + " out of its range");
    }
};

void presets(trial& running) {
    const subject asked(running);
    lv2_plugin& plugin = lv2_of(asked);
    const auto ranges = ranges_of(running, plugin);
    const owned_nodes listed{
        lilv_plugin_get_related(plugin.described(), node(plugin, LV2_PRESETS__Preset).get())};
    if (lilv_nodes_size(listed.get()) == 0)
        running.skip("it has no presets");
    LILV_FOREACH(nodes, i, listed.get()) {
        const LilvNode* const preset = lilv_nodes_get(listed.get(), i);
        running.doing(std::string{"preset "} + lilv_node_as_string(preset));
        running.expect(lilv_world_load_resource(plugin.world(), preset) >= 0,
                       "its file cannot be read");
        const owned_state state{lilv_state_new_from_world(plugin.world(), &plugin.map(), preset)};
        running.expect(state && lilv_state_get_label(state.get()), "it has no name");
        preset_reader reader{running, ranges, plugin.map()};
        lilv_state_emit_port_values(state.get(), preset_reader::take, &reader);
    }
    running.doing("");
}

void extension_data(trial& running) {
    const subject made(running, usual_rate, usual_block);
    const lv2_plugin& plugin = lv2_of(made);
    const owned_nodes promised{lilv_plugin_get_extension_data(plugin.described())};
    for_each(promised.get(), [&](const std::string& uri) {
        running.expect(lilv_instance_get_extension_data(plugin.instance(), uri.c_str()),
                       "it promises " + uri + " and has none");
    });
    running.expect(!lilv_instance_get_extension_data(plugin.instance(), "urn:unknown:extension"),
                   "it has an extension that does not exist");
}

void hard_real_time(trial& running) {
    const subject asked(running);
    const lv2_plugin& plugin = lv2_of(asked);
    running.prefer(
        lilv_plugin_has_feature(plugin.described(), node(plugin, LV2_CORE__hardRTCapable).get()),
        "it does not promise to be fit for real time");
}

/// A host's knobs are the host's.
void inputs_stay(trial& running) {
    subject played(running, usual_rate, usual_block);
    std::vector<float> before;
    for (int i = 0; i < played.nb_parameters(); ++i)
        before.push_back(played.get(i));
    for (std::uint8_t controller = 0; controller < 120; ++controller) {
        event_list events;
        events.add_midi(std::array<std::uint8_t, 3>{0xB0, controller, 100}, 0);
        played.send(events);
        played.play(usual_block);
    }
    for (int i = 0; i < played.nb_parameters(); ++i)
        running.expect(played.get(i) == before[static_cast<std::size_t>(i)],
                       "it moves its host's parameter " + std::to_string(i));
}

void panels(trial& running) {
    const subject asked(running);
    const owned_uis listed{lilv_plugin_get_uis(lv2_of(asked).described())};
    if (lilv_uis_size(listed.get()) == 0)
        running.skip("it has no panel");
    LILV_FOREACH(uis, i, listed.get()) {
        const LilvUI* const panel = lilv_uis_get(listed.get(), i);
        const std::string path = lilv_path(lilv_ui_get_binary_uri(panel));
        const library loaded(path);
        running.expect(loaded.error.empty(), path + ", a panel's, does not load: " + loaded.error);
        running.expect(loaded.find("lv2ui_descriptor"), path + " exports no lv2ui_descriptor");
    }
}

} // namespace

table lv2_rows() {
    return only(plugin_format::lv2, {{"lv2/required features", demand::hosts, required_features},
                                     {"lv2/ports", demand::interface, ports},
                                     {"lv2/presets", demand::interface, presets},
                                     {"lv2/extension data", demand::interface, extension_data},
                                     {"lv2/fit for real time", demand::hosts, hard_real_time},
                                     {"lv2/inputs stay the host's", demand::interface, inputs_stay},
                                     {"lv2/libraries of panels", demand::interface, panels}});
}
