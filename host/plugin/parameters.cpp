#include "plugin/parameters.h"

#include "text/lower_case.h"
#include "text/number.h"

#include <algorithm>

namespace {

[[noreturn]] void misuse(const std::string& sentence) { throw failure{exit_misused, sentence}; }

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

} // namespace

parameter_setting parse_setting(const std::string& text) {
    const auto equals = text.rfind('=');
    if (equals == text.npos || equals == 0)
        misuse("a parameter is set as Name=value, and \"" + text + "\" is no such pair");
    const std::string word = lower_case(text.substr(equals + 1));
    const auto number = word == "on"    ? std::optional{1.0f}
                        : word == "off" ? std::optional{0.0f}
                                        : parse_number<float>(word);
    if (!number || !(*number >= 0 && *number <= 1))
        misuse("a parameter takes values from 0 to 1, on and off; \"" + text
               + "\" has none of them");
    return {text.substr(0, equals), *number};
}

std::vector<std::string> parameter_names(plugin& instrument) {
    std::vector<std::string> names;
    names.reserve(static_cast<std::size_t>(instrument.nb_parameters()));
    for (int i = 0; i < instrument.nb_parameters(); ++i)
        names.push_back(instrument.parameter_name(i));
    return names;
}

int find_parameter(const std::vector<std::string>& names, const std::string& name) {
    const auto exact = std::find(names.begin(), names.end(), name);
    if (exact != names.end())
        return static_cast<int>(exact - names.begin());
    const auto is_alike = [wanted = lower_case(name)](const std::string& candidate) {
        return lower_case(candidate) == wanted;
    };
    const auto alike = std::find_if(names.begin(), names.end(), is_alike);
    if (alike == names.end())
        misuse("the plug-in has no parameter \"" + name + "\"; it has "
               + (names.empty() ? "none" : joined(names)));
    if (std::find_if(alike + 1, names.end(), is_alike) != names.end())
        misuse("more than one parameter may be meant by \"" + name + "\"; there are "
               + joined(names));
    return static_cast<int>(alike - names.begin());
}
