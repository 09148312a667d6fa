#include "instrument/registration.h"

#include "instrument/text_reading.h"

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

bool read_value(std::string_view word, float& value) {
    if (word != "on" && word != "off")
        return read_number(word, value) && value >= 0 && value <= 1;
    value = word == "on" ? 1.0f : 0.0f;
    return true;
}

void add_remark(registration& read, std::string_view words) {
    if (read.title.empty())
        read.title = words;
    else
        read.comment.append(read.comment.empty() ? "" : " ").append(words);
}

} // namespace

std::optional<registration> registration_read(std::string_view text, const control& registry) {
    registration read;
    while (!text.empty()) {
        std::string_view line = trimmed(take_until(text, '\n'));
        if (line.starts_with('#'))
            add_remark(read, trimmed(line.substr(1)));
        if (line.empty() || line.starts_with('#'))
            continue;
        const std::string name{trimmed(take_until(line, '='))};
        registration::setting setting{control_find_parameter(&registry, name.c_str()), 0};
        if (setting.index < 0 || !read_value(trimmed(line), setting.value))
            return std::nullopt;
        read.settings.push_back(setting);
    }
    return read.settings.empty() ? std::nullopt : std::optional{read};
}
