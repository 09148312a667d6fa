#include "command/info_command.h"

#include "plugin/parameters.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace {

std::string line(const std::string& label, const std::string& value) {
    std::string text = "  " + label;
    text.resize(14, ' ');
    return text + value + "\n";
}

std::string identity_text(plugin& instrument) {
    std::string text = instrument.name() + "\n";
    for (const auto& [label, fact] : instrument.facts())
        text += line(label, fact);
    return text;
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
        table += row(std::to_string(i), names[static_cast<std::size_t>(i)], value.data(),
                     instrument.parameter_text(i));
    }
    return table;
}

} // namespace

std::string info_text(const std::filesystem::path& plugin_file) {
    const auto describe = [](plugin& instrument) {
        return identity_text(instrument) + parameter_table(instrument);
    };
    plugin_try(plugin_file, describe);
    return describe(*plugin_load(plugin_file));
}
