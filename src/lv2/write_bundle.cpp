/// Writes the data files of the bundle, from which hosts know the plug-in without loading it. What
/// they say of parameters comes from the registry, and the presets from registrations.
///
///   write_bundle FOLDER REGISTRATION...
///
/// Ends with status 1 and a message where a registration cannot be read or a file not be written.

#include "instrument/instrument.h"
#include "instrument/registration.h"
#include "lv2/ports.h"
#include "player/parameter_text.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <lv2/instance-access/instance-access.h>
#include <lv2/options/options.h>
#include <string>
#include <vector>

namespace {

struct preset {
    std::string uri; ///< in brackets
    registration content;
};

constexpr const char* plugin = "<" TINDELWAX_URI ">";
constexpr const char* panel = "<" TINDELWAX_PANEL_URI ">";
constexpr const char* output_group = "<" TINDELWAX_URI "#output>";
constexpr const char* stops_group = "<" TINDELWAX_URI "#stops>";

constexpr const char* maintainer = "[ a foaf:Organization ; foaf:name \"Quenmar\" ; foaf:mbox "
                                   "<mailto:tindelwax@quenmar.example> ]";

/// One counts what is added to the ports, the other what is mended: even in a release, odd between
/// two, and 0 as the minor version is what no release has.
constexpr int minor_version = 2;
constexpr int micro_version = 0;

constexpr const char* prefixes = R"(@prefix atom: <http://lv2plug.in/ns/ext/atom#> .
@prefix doap: <http://usefulinc.com/ns/doap#> .
@prefix foaf: <http://xmlns.com/foaf/0.1/> .
@prefix lv2: <http://lv2plug.in/ns/lv2core#> .
@prefix midi: <http://lv2plug.in/ns/ext/midi#> .
@prefix pg: <http://lv2plug.in/ns/ext/port-groups#> .
@prefix pset: <http://lv2plug.in/ns/ext/presets#> .
@prefix rdf: <http://www.w3.org/1999/02/22-rdf-syntax-ns#> .
@prefix rdfs: <http://www.w3.org/2000/01/rdf-schema#> .
@prefix state: <http://lv2plug.in/ns/ext/state#> .
@prefix ui: <http://lv2plug.in/ns/extensions/ui#> .
@prefix units: <http://lv2plug.in/ns/extensions/units#> .
@prefix urid: <http://lv2plug.in/ns/ext/urid#> .

)";

[[noreturn]] void fail(const std::filesystem::path& file, const char* what) {
    std::fprintf(stderr, "%s %s\n", file.c_str(), what);
    std::exit(EXIT_FAILURE);
}

/// With a point: without one it would be an integer.
std::string decimal(float value) {
    std::array<char, 64> text;
    char* const begin = text.data();
    char* const end =
        std::to_chars(begin, begin + text.size(), value, std::chars_format::fixed).ptr;
    const std::string number(begin, end);
    return number.find('.') == number.npos ? number + ".0" : number;
}

std::string symbol(const parameter& param) {
    std::string name = param.name;
    for (char& letter : name) {
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
        if (letter < 'a' || letter > 'z')
            letter = '_';
    }
    return name;
}

/// One more of what is said of a thing, of which its kind was said first.
template <typename Object>
void say(std::ostream& out, const char* predicate, const Object& object) {
    out << " ;\n    " << predicate << ' ' << object;
}

void say_text(std::ostream& out, const char* predicate, const std::string& text) {
    out << " ;\n    " << predicate << ' ' << std::quoted(text);
}

void say_name(std::ostream& out, const std::string& its_symbol, const std::string& name) {
    say_text(out, "lv2:symbol", its_symbol);
    say_text(out, "lv2:name", name);
}

void begin_preset(std::ostream& out, const preset& described) {
    out << described.uri << "\n    a pset:Preset";
    say(out, "lv2:appliesTo", plugin);
}

void write_manifest(std::ostream& out, const std::vector<preset>& presets) {
    out << prefixes << plugin << "\n    a lv2:Plugin";
    say(out, "lv2:binary", "<tindelwax.so>");
    say(out, "rdfs:seeAlso", "<tindelwax.ttl> .\n\n");
    out << panel << "\n    a ui:X11UI";
    say(out, "lv2:binary", "<tindelwax.so>");
    say(out, "rdfs:seeAlso", "<tindelwax.ttl> .\n");
    for (const preset& one : presets) {
        out << '\n';
        begin_preset(out, one);
        say(out, "rdfs:seeAlso", "<presets.ttl> .\n");
    }
}

void write_presets(std::ostream& out, const std::vector<preset>& presets, const control& registry) {
    out << prefixes;
    for (const preset& one : presets) {
        begin_preset(out, one);
        say_text(out, "rdfs:label", one.content.title);
        say_text(out, "rdfs:comment", one.content.comment);
        for (const auto& [index, value] : one.content.settings) {
            const parameter& param = *registry.parameters[static_cast<std::size_t>(index)];
            say(out, "lv2:port", "[ lv2:symbol ");
            out << std::quoted(symbol(param)) << " ; pset:value " << decimal(value) << " ]";
        }
        out << " .\n\n";
    }
}

void write_midi_port(std::ostream& out) {
    out << "[\n    a lv2:InputPort , atom:AtomPort";
    say(out, "lv2:index", port_midi);
    say_name(out, "midi", "MIDI");
    say(out, "lv2:designation", "lv2:control");
    say(out, "atom:bufferType", "atom:Sequence");
    say(out, "atom:supports", "midi:MidiEvent\n]");
}

void write_audio_port(std::ostream& out, lv2_port port, const std::string& side,
                      const std::string& name) {
    out << " , [\n    a lv2:OutputPort , lv2:AudioPort";
    say(out, "lv2:index", port);
    say_name(out, side, name);
    say(out, "lv2:designation", "pg:" + side);
    say(out, "pg:group", output_group);
    out << "\n]";
}

/// Volumes are linear, whatever their displays show: a gain has the unit of coefficients.
void write_parameter_port(std::ostream& out, const parameter& param, std::size_t index) {
    out << " , [\n    a lv2:InputPort , lv2:ControlPort";
    say(out, "lv2:index", port_first_parameter + index);
    say_name(out, symbol(param), param.name);
    say(out, "lv2:default", decimal(param.default_value));
    say(out, "lv2:minimum", "0.0");
    say(out, "lv2:maximum", "1.0");
    if (parameter_is_switch(param)) {
        say(out, "lv2:portProperty", "lv2:toggled");
        for (const float value : {0.0f, 1.0f}) {
            say(out, "lv2:scalePoint", "[ rdfs:label ");
            out << std::quoted(parameter_text(param, value)) << " ; rdf:value " << decimal(value)
                << " ]";
        }
    }
    if (param.unit == "db")
        say(out, "units:unit", "units:coef");
    if (param.manual != static_cast<unsigned>(-1))
        say(out, "pg:group", stops_group);
    out << "\n]";
}

void write_group(std::ostream& out, const char* uri, const char* kinds, const char* its_symbol,
                 const char* name) {
    out << uri << "\n    a " << kinds;
    say_name(out, its_symbol, name);
    out << " .\n\n";
}

void write_panel(std::ostream& out) {
    out << panel << "\n    a ui:X11UI";
    say(out, "lv2:requiredFeature", "ui:parent , ui:idleInterface");
    say(out, "lv2:optionalFeature",
        "<" LV2_INSTANCE_ACCESS_URI "> , <" LV2_OPTIONS__options
        "> , urid:map , ui:resize , ui:touch , ui:fixedSize , ui:noUserResize");
    say(out, "<" LV2_OPTIONS__supportedOption ">", "ui:scaleFactor");
    say(out, "lv2:extensionData", "ui:idleInterface .\n\n");
}

void write_description(std::ostream& out, const control& registry) {
    out << prefixes;
    write_group(out, output_group, "pg:OutputGroup , pg:StereoGroup", "output", "Output");
    write_group(out, stops_group, "pg:InputGroup", "stops", "Stops");
    write_panel(out);
    out << plugin << "\n    a lv2:Plugin , lv2:InstrumentPlugin , doap:Project";
    say_text(out, "doap:name", registry.name);
    say_text(out, "rdfs:comment", "An electronic organ with a split bass section.");
    say(out, "doap:license", "<https://spdx.org/licenses/MIT>");
    say(out, "doap:maintainer", maintainer);
    say(out, "lv2:minorVersion", minor_version);
    say(out, "lv2:microVersion", micro_version);
    say(out, "lv2:requiredFeature", "urid:map");
    say(out, "lv2:optionalFeature", "lv2:hardRTCapable");
    say(out, "lv2:extensionData", "state:interface");
    say(out, "pg:mainOutput", output_group);
    say(out, "ui:ui", panel);
    say(out, "lv2:port", "");
    write_midi_port(out);
    write_audio_port(out, port_left, "left", "Left");
    write_audio_port(out, port_right, "right", "Right");
    for (std::size_t i = 0; i < registry.parameters.size(); ++i)
        write_parameter_port(out, *registry.parameters[i], i);
    out << " .\n";
}

preset read_preset(const std::filesystem::path& file, const control& registry) {
    std::ifstream stream{file};
    const std::string text{std::istreambuf_iterator{stream}, {}};
    const auto content = registration_read(text, registry);
    if (!content || content->title.empty())
        fail(file, "is no registration");
    return {"<" TINDELWAX_URI "#" + file.stem().string() + ">", *content};
}

template <typename Writer>
void write_file(const std::filesystem::path& file, const Writer& write) {
    std::ofstream stream{file};
    write(stream);
    if (!stream.flush())
        fail(file, "cannot be written");
}

} // namespace

int main(int nb_arguments, char** arguments) {
    if (nb_arguments < 2)
        fail("write_bundle", "FOLDER REGISTRATION...");
    instrument described;
    const control& registry = *described.shown().p_control;
    std::vector<preset> presets;
    for (int i = 2; i < nb_arguments; ++i)
        presets.push_back(read_preset(arguments[i], registry));

    const std::filesystem::path folder = arguments[1];
    write_file(folder / "manifest.ttl", [&](auto& out) { write_manifest(out, presets); });
    write_file(folder / "tindelwax.ttl", [&](auto& out) { write_description(out, registry); });
    write_file(folder / "presets.ttl", [&](auto& out) { write_presets(out, presets, registry); });
}
