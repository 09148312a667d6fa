#include "command/info_command.h"

#include "plugin/parameters.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace {

std::string line(const char* label, const std::string& value) {
    std::string text = std::string{"  "} + label;
    text.resize(14, ' ');
    return text + value + "\n";
}

std::string id_text(VstInt32 id) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), " (0x%08X)", static_cast<unsigned>(id));
    std::string characters;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto c = static_cast<char>(id >> shift & 0xFF);
        characters += c >= ' ' && c <= '~' ? c : '.';
    }
    return "'" + characters + "'" + text.data();
}

std::string category_text(VstIntPtr category) {
    constexpr std::array names{"unknown",     "effect",          "synthesizer",
                               "analysis",    "mastering",       "spatial effect",
                               "room effect", "surround effect", "restoration",
                               "offline",     "set of plug-ins", "generator"};
    const auto index = static_cast<std::size_t>(category);
    return index < names.size() ? names[index] : "number " + std::to_string(category);
}

std::string flags_text(VstInt32 flags) {
    constexpr std::array<std::pair<VstInt32, const char*>, 6> names{
        {{effFlagsHasEditor, "editor"},
         {effFlagsCanReplacing, "single precision"},
         {effFlagsCanDoubleReplacing, "double precision"},
         {effFlagsProgramChunks, "programs as chunks"},
         {effFlagsIsSynth, "instrument"},
         {effFlagsNoSoundInStop, "silent when stopped"}}};
    std::string text;
    for (const auto& [flag, name] : names)
        if (flags & flag)
            text += (text.empty() ? "" : ", ") + std::string{name};
    return text.empty() ? "none" : text;
}

std::string channels_text(plugin& instrument) {
    const AEffect& record = instrument.record();
    return std::to_string(record.numInputs) + " in, " + std::to_string(record.numOutputs)
           + " out; MIDI " + std::to_string(instrument.ask(effGetNumMidiInputChannels)) + " in, "
           + std::to_string(instrument.ask(effGetNumMidiOutputChannels)) + " out";
}

std::string identity_text(plugin& instrument) {
    const AEffect& record = instrument.record();
    return instrument.text(effGetEffectName) + "\n"
           + line("product", instrument.text(effGetProductString))
           + line("vendor", instrument.text(effGetVendorString))
           + line("version", std::to_string(record.version) + "; the vendor's "
                                 + std::to_string(instrument.ask(effGetVendorVersion))
                                 + "; interface "
                                 + std::to_string(instrument.ask(effGetVstVersion)))
           + line("id", id_text(record.uniqueID))
           + line("category", category_text(instrument.ask(effGetPlugCategory)))
           + line("channels", channels_text(instrument)) + line("flags", flags_text(record.flags))
           + line("programs", std::to_string(std::max(record.numPrograms, 0)))
           + line("parameters", std::to_string(instrument.nb_parameters()));
}

std::string parameter_table(plugin& instrument) {
    if (instrument.nb_parameters() == 0)
        return {};
    const std::vector<std::string> names = parameter_names(instrument);
    std::size_t width = 9;
    for (const std::string& name : names)
        width = std::max(width, name.size());
    const auto row = [width](const std::string& number, const std::string& name,
                             const std::string& value, const std::string& display) {
        return std::string(5 - std::min<std::size_t>(5, number.size()), ' ') + number + "  " + name
               + std::string(width - name.size() + 2, ' ') + value + "  " + display + "\n";
    };
    std::string table = "\n" + row("#", "parameter", "value ", "display");
    for (int i = 0; i < instrument.nb_parameters(); ++i) {
        std::array<char, 64> value{};
        std::snprintf(value.data(), value.size(), "%.4f",
                      static_cast<double>(instrument.parameter(i)));
        const std::string label = instrument.text(effGetParamLabel, i);
        table += row(std::to_string(i), names[static_cast<std::size_t>(i)], value.data(),
                     instrument.text(effGetParamDisplay, i) + (label.empty() ? "" : " ") + label);
    }
    return table;
}

} // namespace

std::string info_text(const std::filesystem::path& plugin_file) {
    const auto describe = [](plugin& instrument) {
        return identity_text(instrument) + parameter_table(instrument);
    };
    plugin_try(plugin_file, describe);
    plugin instrument{plugin_file};
    return describe(instrument);
}
