#include "command/song_input.h"

#include "failure/failure.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace {

[[noreturn]] void fail(const std::string& argument, const std::string& what) {
    throw failure{exit_misused, song_name(argument) + " " + what};
}

/// Stops a little past the reader's limit, since a device may never end.
std::vector<std::uint8_t> read_all(std::FILE* stream, const std::string& argument) {
    std::vector<std::uint8_t> bytes;
    std::array<std::uint8_t, 1 << 16> piece;
    while (bytes.size() <= midi_file_max_bytes && !std::feof(stream) && !std::ferror(stream)) {
        const auto nb_bytes = std::fread(piece.data(), 1, piece.size(), stream);
        bytes.insert(bytes.end(), piece.begin(), piece.begin() + nb_bytes);
    }
    if (std::ferror(stream))
        fail(argument, std::string{"cannot be read: "} + std::strerror(errno));
    return bytes;
}

std::vector<std::uint8_t> read_argument(const std::string& argument) {
    if (argument == "-")
        return read_all(stdin, argument);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file{std::fopen(argument.c_str(), "rb"),
                                                               std::fclose};
    if (!file)
        fail(argument, std::string{"cannot be read: "} + std::strerror(errno));
    return read_all(file.get(), argument);
}

} // namespace

std::string song_name(const std::string& argument) {
    return argument == "-" ? "standard input" : argument;
}

midi_song song_read(const std::string& argument) {
    midi_song song = midi_file_read(read_argument(argument));
    if (!song.error.empty())
        fail(argument, song.error);
    for (const std::string& warning : song.warnings)
        warn(song_name(argument) + ": " + warning);
    return song;
}
