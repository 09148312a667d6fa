#pragma once
/// Writes the bytes of MIDI files for tests.

#include <cstdint>
#include <string>
#include <vector>

namespace midi_bytes {

using bytes = std::vector<std::uint8_t>;

/// "00 90 3C 40" as bytes.
inline bytes from_hex(const std::string& hex) {
    bytes result;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 3)
        result.push_back(static_cast<std::uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return result;
}

inline void append_chunk(bytes& file, const std::string& id, const bytes& content) {
    file.insert(file.end(), id.begin(), id.end());
    for (int shift = 24; shift >= 0; shift -= 8)
        file.push_back(static_cast<std::uint8_t>(content.size() >> shift));
    file.insert(file.end(), content.begin(), content.end());
}

/// A whole file of tracks given in hex, without their End of Track.
inline bytes song(int format, int division, const std::vector<std::string>& tracks) {
    bytes file;
    const auto low_byte = [](std::size_t number) { return static_cast<std::uint8_t>(number); };
    const auto nb_tracks = tracks.size();
    append_chunk(file, "MThd",
                 {0, low_byte(static_cast<std::size_t>(format)), low_byte(nb_tracks >> 8),
                  low_byte(nb_tracks), low_byte(static_cast<std::size_t>(division) >> 8),
                  low_byte(static_cast<std::size_t>(division))});
    for (const std::string& track : tracks) {
        bytes content = from_hex(track);
        const bytes end_of_track{0x00, 0xFF, 0x2F, 0x00};
        content.insert(content.end(), end_of_track.begin(), end_of_track.end());
        append_chunk(file, "MTrk", content);
    }
    return file;
}

} // namespace midi_bytes
