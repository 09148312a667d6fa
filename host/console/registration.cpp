#include "console/registration.h"

#include "failure/printable.h"
#include "platform/process.h"
#include "platform/user_folders.h"
#include "text/lower_case.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <iomanip>
#include <sstream>

namespace fs = std::filesystem;

namespace {

constexpr const char* ending = ".txt";
constexpr const char* blanks = " \t\r";

[[noreturn]] void misuse(const std::string& sentence) { throw failure{exit_misused, sentence}; }

std::string trimmed(const std::string& text) {
    const auto first = text.find_first_not_of(blanks);
    return first == text.npos ? "" : text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

std::string place(const registration& read, int line) {
    return read.file.string() + ", line " + std::to_string(line) + ": ";
}

void add_line(registration& read, int number, const std::string& line) {
    if (line.empty())
        return;
    if (line[0] == '#') {
        const std::string words = trimmed(line.substr(1));
        if (read.title.empty())
            read.title = words;
        else
            read.comment += (read.comment.empty() ? "" : " ") + words;
        return;
    }
    try {
        const auto equals = line.find('=');
        const std::string value = equals == line.npos ? "" : "=" + trimmed(line.substr(equals + 1));
        read.lines.push_back({number, parse_setting(trimmed(line.substr(0, equals)) + value)});
    } catch (const failure& wrong) {
        misuse(place(read, number) + wrong.what());
    }
}

/// The player's first. Beside the program lie those of a build; of an installed one, in its share.
std::vector<fs::path> folders() {
    const fs::path own = executable_path().parent_path();
    return {user_data_folder() / "registrations", own / "registrations",
            own.parent_path() / "share/tindelwax/registrations"};
}

bool is_of(const registration& one, const std::string& name) {
    return lower_case(one.name) == lower_case(name);
}

} // namespace

registration registration_read(const fs::path& file) {
    registration read{.name = file.stem().string(), .file = file};
    std::ifstream stream{file};
    std::string line;
    for (int number = 1; std::getline(stream, line); ++number)
        add_line(read, number, trimmed(line));
    if (!stream.eof() || fs::is_directory(file))
        misuse(file.string() + " cannot be read: " + std::strerror(errno));
    if (read.lines.empty())
        misuse(file.string() + " sets nothing; a registration has lines such as Name=value");
    return read;
}

std::vector<registration> registrations_list() {
    std::vector<registration> all;
    for (const fs::path& folder : folders()) {
        std::vector<fs::path> files;
        std::error_code none;
        for (const auto& entry : fs::directory_iterator{folder, none})
            if (entry.path().extension() == ending)
                files.push_back(entry.path());
        std::sort(files.begin(), files.end());
        for (const fs::path& file : files) {
            const auto is_hidden = [&file](const registration& other) {
                return is_of(other, file.stem().string());
            };
            if (std::any_of(all.begin(), all.end(), is_hidden))
                continue;
            try {
                all.push_back(registration_read(file));
            } catch (const failure& wrong) {
                warn(wrong.what());
            }
        }
    }
    return all;
}

std::string registrations_text() {
    constexpr int number_width = 3, name_width = 18;
    std::ostringstream text;
    int program = 0;
    for (const registration& one : registrations_list()) {
        text << std::setw(number_width) << std::right << program++ << "  " << std::setw(name_width)
             << std::left << printable(one.name) + "  " << printable(one.title) << '\n';
        if (!one.comment.empty())
            text << std::string(number_width + 2 + name_width, ' ') << printable(one.comment)
                 << '\n';
    }
    text << "Your own are files NAME.txt in " << printable(folders().front().string()) << '\n';
    return text.str();
}

registration registration_find(const std::string& name_or_file) {
    if (name_or_file.find('/') != std::string::npos || fs::path{name_or_file}.extension() == ending)
        return registration_read(name_or_file);
    std::string names;
    for (const registration& one : registrations_list()) {
        if (is_of(one, name_or_file))
            return one;
        names += (names.empty() ? "" : ", ") + one.name;
    }
    misuse("there is no registration \"" + name_or_file + "\"; there are "
           + (names.empty() ? "none" : names) + ", and files named FILE.txt");
}

bool registration_concerns(const registration& one, const std::vector<std::string>& parameters) {
    const auto is_known = [&parameters](const registration::line& line) {
        try {
            return find_parameter(parameters, line.setting.name) >= 0;
        } catch (const failure&) {
            return false;
        }
    };
    return 2 * std::ranges::count_if(one.lines, is_known) > std::ssize(one.lines);
}

std::vector<parameter_value> registration_resolve(const registration& chosen,
                                                  const std::vector<std::string>& parameters) {
    std::vector<parameter_value> values;
    for (const registration::line& line : chosen.lines)
        try {
            values.push_back({find_parameter(parameters, line.setting.name), line.setting.value});
        } catch (const failure& wrong) {
            misuse(place(chosen, line.number) + wrong.what());
        }
    return values;
}

std::string registration_text(plugin& instrument, const std::string& title) {
    std::string text = "# " + title + "\n";
    const std::vector<std::string> names = parameter_names(instrument);
    for (int i = 0; i < instrument.nb_parameters(); ++i) {
        std::array<char, 32> number{};
        const auto end =
            std::to_chars(number.data(), number.data() + number.size(), instrument.parameter(i));
        text +=
            names[static_cast<std::size_t>(i)] + "=" + std::string{number.data(), end.ptr} + "\n";
    }
    return text;
}
