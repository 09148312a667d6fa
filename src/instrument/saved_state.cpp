#include "instrument/saved_state.h"

#include "instrument/text_reading.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace {

constexpr std::string_view first_line = "tindelwax 1";
constexpr std::string_view last_line = "end";
constexpr std::size_t nb_parameter_words = 4;

template <typename Number>
std::string text_of(Number number) {
    std::array<char, 32> text;
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

/// The name is all before the last three words.
std::optional<saved_parameter> read_parameter(std::string_view line) {
    std::array<std::string_view, nb_parameter_words - 1> words;
    for (auto word = words.rbegin(); word != words.rend(); ++word) {
        const std::size_t space = line.rfind(' ');
        if (space == line.npos)
            return std::nullopt;
        *word = line.substr(space + 1);
        line = line.substr(0, space);
    }
    saved_parameter read{std::string{line}, 0, 0, 0};
    if (line.empty() || !read_number(words[0], read.value) || !std::isfinite(read.value)
        || !read_number(words[1], read.midi_cc) || !read_number(words[2], read.midi_channel))
        return std::nullopt;
    return read;
}

} // namespace

saved_state saved_state_take(const control& registry, std::uint32_t seed) {
    saved_state state{seed, {}};
    for (std::size_t i = 0; i < registry.parameters.size(); ++i) {
        const parameter& param = *registry.parameters[i];
        state.parameters.push_back({param.name,
                                    control_get_parameter(&registry, static_cast<int>(i)),
                                    param.midi_cc.load(std::memory_order_relaxed),
                                    param.midi_channel.load(std::memory_order_relaxed)});
    }
    return state;
}

void saved_state_put(const saved_state& state, control& registry) {
    for (const saved_parameter& saved : state.parameters) {
        const int index = control_find_parameter(&registry, saved.name.c_str());
        if (index < 0)
            continue;
        control_set_parameter(&registry, index, std::min(std::max(0.0f, saved.value), 1.0f));
        parameter& param = *registry.parameters[static_cast<std::size_t>(index)];
        param.midi_cc.store(saved.midi_cc, std::memory_order_relaxed);
        param.midi_channel.store(saved.midi_channel, std::memory_order_relaxed);
    }
}

std::string saved_state_write(const saved_state& state) {
    std::string text{first_line};
    text += "\nseed " + text_of(state.seed) + '\n';
    for (const auto& [name, value, midi_cc, midi_channel] : state.parameters)
        text += name + ' ' + text_of(value) + ' ' + text_of(midi_cc) + ' ' + text_of(midi_channel)
                + '\n';
    return text += std::string{last_line} + '\n';
}

std::optional<saved_state> saved_state_read(std::string_view text) {
    constexpr std::string_view seed_word = "seed ";
    saved_state state{};
    if (take_until(text, '\n') != first_line)
        return std::nullopt;
    const std::string_view seed = take_until(text, '\n');
    if (!seed.starts_with(seed_word) || !read_number(seed.substr(seed_word.size()), state.seed))
        return std::nullopt;
    while (!text.empty()) {
        const std::string_view line = take_until(text, '\n');
        if (line == last_line)
            return text.empty() ? std::optional{state} : std::nullopt;
        const auto read = read_parameter(line);
        if (!read)
            return std::nullopt;
        state.parameters.push_back(*read);
    }
    return std::nullopt;
}
