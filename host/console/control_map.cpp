#include "console/control_map.h"

#include "failure/failure.h"
#include "text/number.h"

#include <algorithm>
#include <fstream>

namespace fs = std::filesystem;

control_mapping control_mapping_parse(const std::string& text) {
    const auto equals = text.find('=');
    const auto colon = text.substr(0, equals).find(':');
    const bool is_reversed = text.starts_with('-');
    const auto start = is_reversed ? std::size_t{1} : 0;
    const auto controller = parse_number<int>(text.substr(start, std::min(equals, colon) - start));
    const bool has_channel = colon != text.npos;
    const auto channel =
        has_channel ? parse_number<int>(text.substr(colon + 1, equals - colon - 1)) : std::nullopt;
    const bool is_sound = equals != text.npos && equals + 1 < text.size() && controller
                          && *controller >= 0 && *controller < controller_all_sound_off
                          && (!has_channel || (channel && *channel >= 1 && *channel <= 16));
    if (!is_sound)
        throw failure{
            exit_misused,
            "a controller is mapped as CC=Name, CC:channel=Name or -CC=Name, with CC from "
            "0 to 119, and \""
                + text + "\" is no such mapping"};
    return {*controller, channel, text.substr(equals + 1), is_reversed};
}

std::string control_mapping_text(const control_mapping& mapping) {
    return (mapping.is_reversed ? "-" : "") + std::to_string(mapping.controller)
           + (mapping.channel ? ":" + std::to_string(*mapping.channel) : "") + "="
           + mapping.parameter;
}

std::vector<control_mapping> control_map_read(const fs::path& file) {
    std::vector<control_mapping> mappings;
    std::ifstream stream{file};
    for (std::string line; std::getline(stream, line);)
        try {
            mappings.push_back(control_mapping_parse(line));
        } catch (const failure& wrong) {
            warn(file.string() + ": " + wrong.what());
        }
    return mappings;
}

bool control_map_write(const fs::path& file, const std::vector<control_mapping>& mappings) {
    std::error_code error;
    fs::create_directories(file.parent_path(), error);
    const fs::path whole = file.string() + ".new";
    std::ofstream stream{whole};
    for (const control_mapping& mapping : mappings)
        stream << control_mapping_text(mapping) << '\n';
    stream.close();
    if (stream)
        fs::rename(whole, file, error);
    return stream && !error;
}

void control_table::set(std::size_t channel, std::size_t controller, target moved) noexcept {
    const std::int32_t entry = moved.parameter + 1;
    entries_[channel][controller].store(moved.is_reversed ? -entry : entry,
                                        std::memory_order_relaxed);
}

std::optional<control_table::target> control_table::find(std::size_t channel,
                                                         std::size_t controller) const noexcept {
    const std::int32_t entry = entries_[channel][controller].load(std::memory_order_relaxed);
    if (entry == 0)
        return std::nullopt;
    return target{(entry < 0 ? -entry : entry) - 1, entry < 0};
}

void control_table::set(const control_mapping& mapping, int parameter) {
    for (std::size_t channel = 0; channel < entries_.size(); ++channel)
        if (!mapping.channel || channel + 1 == static_cast<std::size_t>(*mapping.channel))
            set(channel, static_cast<std::size_t>(mapping.controller),
                {parameter, mapping.is_reversed});
}
