#include "ini/ini.h"

#include "ini/config_files.h"
#include "ini/ini_text.h"
#include "ini/trusted_file.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <utility>

namespace {

constexpr std::size_t max_name = 50; ///< bytes kept of a section's or a setting's name
constexpr std::int64_t max_file_long = std::int64_t{16} << 20;

/// One parse: what carries over from line to line.
struct parse {
    ini_handler handler;
    void* user;
    char section[max_name] = "";
    char prev_name[max_name] = "";
    int lineno = 0;
    int error = 0; ///< first line in error

    void check(bool accepted) {
        if (!accepted && error == 0)
            error = lineno;
    }

    void call_handler(const char* name, const char* value) {
        check(handler(user, section, name, value) != 0);
    }
};

/// `header` follows the '['.
void parse_section(parse& state, char* header) {
    char* const end = find_char_or_comment(header, ']');
    if (*end != ']') {
        state.check(false);
        return;
    }
    *end = '\0';
    strncpy0(state.section, header, max_name);
    state.prev_name[0] = '\0';
}

void parse_setting(parse& state, char* start) {
    char* separator = find_char_or_comment(start, '=');
    if (*separator != '=')
        separator = find_char_or_comment(start, ':');
    if (*separator != '=' && *separator != ':') {
        state.check(false);
        return;
    }
    *separator = '\0';
    const char* name = rstrip(start);
    char* value = lskip(separator + 1);
    *find_char_or_comment(value, '\0') = '\0'; // cuts an inline comment
    rstrip(value);

    strncpy0(state.prev_name, name, max_name);
    state.call_handler(name, value);
}

void parse_line(parse& state, char* line) {
    ++state.lineno;
    char* const start = lskip(rstrip(line));
    if (state.prev_name[0] && *start && start > line)
        state.call_handler(state.prev_name, start);
    else if (*start == '[')
        parse_section(state, start + 1);
    else if (*start && *start != '#' && *start != ';')
        parse_setting(state, start);
}

} // namespace

ini_data* ini_load_data(const char* filename) {
    if (ini_data* p_file = ini_load_data_from_file(filename))
        return p_file;
    for (std::size_t i = 0; i < nb_config_files; ++i) {
        if (std::strncmp(config_files[i], filename, std::strlen(filename)) != 0)
            continue;
        const unsigned data_len = *files_data_len[i];
        return new ini_data{.filename = filename,
                            .data_len = data_len,
                            .p_data = ini_decipher_data(files_data[i], data_len)};
    }
    return nullptr;
}

ini_data* ini_load_data_from_file(const char* filename) {
    // A directory can be opened on some systems and a pipe would wait for its writer.
    // std::filesystem would tell as well, but on Windows it brings the locales along, which keep a
    // thread-local slot of the process for every time that the library is loaded.
    struct stat status {};
    const auto is_text = [&status](const char* path) {
        return stat(path, &status) == 0 && S_ISREG(status.st_mode)
               && status.st_size <= max_file_long;
    };
    if (!is_text(filename))
        return nullptr;
    const std::optional<std::string> path = trusted_path(filename);
    if (!path) {
        std::printf("%s is passed over: others could have put it there\n", filename);
        return nullptr;
    }
    if (!is_text(path->c_str())) // a name can lead elsewhere by now, the path cannot
        return nullptr;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path->c_str(), "rb"),
                                                               std::fclose);
    if (!file)
        return nullptr;
    std::vector<char> data(static_cast<std::size_t>(status.st_size));
    data.resize(std::fread(data.data(), 1, data.size(), file.get()));
    const auto data_len = static_cast<unsigned>(data.size());
    return new ini_data{.filename = filename, .data_len = data_len, .p_data = std::move(data)};
}

ini_data* ini_load_data_from_memory(const char* filename, const char* p_data, unsigned data_len) {
    return new ini_data{
        .filename = filename, .data_len = data_len, .p_data{p_data, p_data + data_len}};
}

std::vector<char> ini_decipher_data(const unsigned char* p_data, unsigned data_len) {
    return {p_data, p_data + data_len};
}

void ini_data_free(ini_data* p_ini_data) { delete p_ini_data; }

int ini_parse(const ini_data* p_ini_data, ini_handler handler, void* user) {
    if (!p_ini_data)
        return -1;
    parse state{.handler = handler, .user = user};
    const char* stream = p_ini_data->p_data.data();
    unsigned nb_chars = p_ini_data->data_len;
    char line[ini_max_line];
    while (fgets_memory(line, sizeof line, &stream, &nb_chars))
        parse_line(state, line);
    return state.error;
}
