#include "command/arguments.h"

#include "command/number.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace {

[[noreturn]] void misuse(const std::string& sentence) { throw failure{exit_misused, sentence}; }

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

} // namespace

std::string lower_case(std::string text) {
    for (char& c : text)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return text;
}

int parse_bits(const std::string& text) {
    const auto number = parse_number<int>(text);
    if (number != 16 && number != 24 && number != 32)
        misuse("--bits takes 16, 24 or 32; \"" + text + "\" is none of them");
    return *number;
}

std::bitset<16> parse_channels(const std::string& list) {
    std::bitset<16> channels;
    if (list == "all")
        return channels.set();
    std::istringstream items{list};
    for (std::string item; std::getline(items, item, ',');) {
        const auto dash = item.find('-');
        const auto first = parse_number<int>(item.substr(0, dash));
        const auto last = dash == item.npos ? first : parse_number<int>(item.substr(dash + 1));
        if (!first || !last || *first < 1 || *last > 16 || *first > *last)
            misuse("--channels takes numbers from 1 to 16 such as 1,3-5, or all; \"" + item
                   + "\" is neither");
        for (int channel = *first; channel <= *last; ++channel)
            channels.set(static_cast<std::size_t>(channel - 1));
    }
    return channels;
}

parameter_setting parse_setting(const std::string& text) {
    const auto equals = text.rfind('=');
    if (equals == text.npos || equals == 0)
        misuse("--set takes Name=value, and \"" + text + "\" is no such pair");
    const std::string word = lower_case(text.substr(equals + 1));
    const auto number = word == "on"    ? std::optional{1.0f}
                        : word == "off" ? std::optional{0.0f}
                                        : parse_number<float>(word);
    if (!number || !(*number >= 0 && *number <= 1))
        misuse("--set takes values from 0 to 1, on and off; \"" + text + "\" has none of them");
    return {text.substr(0, equals), *number};
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

void apply_settings(plugin& instrument, const std::vector<std::string>& settings) {
    if (settings.empty())
        return;
    std::vector<std::string> names;
    names.reserve(static_cast<std::size_t>(instrument.nb_parameters()));
    for (int i = 0; i < instrument.nb_parameters(); ++i)
        names.push_back(instrument.text(effGetParamName, i));
    for (const std::string& text : settings) {
        const parameter_setting setting = parse_setting(text);
        instrument.set_parameter(find_parameter(names, setting.name), setting.value);
    }
}

void join_optional_level(std::vector<std::string>& arguments) {
    const auto is_value = [&arguments](auto word) {
        return word != arguments.end() && (*word == "-" || !word->starts_with('-'));
    };
    for (auto option = arguments.begin(); option != arguments.end(); ++option) {
        if (*option != "--normalize")
            continue;
        const auto level = std::next(option);
        const bool is_level =
            level != arguments.end()
            && (parse_number<double>(*level) || (is_value(level) && is_value(std::next(level))));
        if (is_level) {
            *option += "=" + *level;
            arguments.erase(level);
        } else {
            *option += "=" + std::to_string(default_peak_db);
        }
    }
}
