#include "command/arguments.h"

#include "failure/failure.h"
#include "text/number.h"

#include <sstream>

namespace {

[[noreturn]] void misuse(const std::string& sentence) { throw failure{exit_misused, sentence}; }

} // namespace

int parse_bits(const std::string& text) {
    const auto number = parse_number<int>(text);
    if (number != 16 && number != 24 && number != 32)
        misuse("--bits takes 16, 24 or 32; \"" + text + "\" is none of them");
    return *number;
}

std::string parse_via(const std::string& text) {
    if (text != "jack" && text != "alsa")
        misuse("--via takes jack or alsa; \"" + text + "\" is neither");
    return text;
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
