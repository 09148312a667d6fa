#include "midi_file/midi_file.h"

#include "midi_file/byte_reader.h"
#include "midi_file/midi_track.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::uint32_t default_us_per_quarter = 500000; // 120 bpm
constexpr double default_ticks_per_quarter = 480;
constexpr std::size_t max_warnings = 8;

constexpr std::uint32_t chunk_id(const char (&text)[5]) {
    std::uint32_t id = 0;
    for (int i = 0; i < 4; ++i)
        id = id << 8 | static_cast<std::uint8_t>(text[i]);
    return id;
}

struct file_header {
    int format = 0;
    int nb_tracks = 0;
    double ticks_per_quarter = default_ticks_per_quarter;
    bool counts_smpte_frames = false; ///< then times do not depend on the tempo
};

/// SMPTE times run at a constant rate, so they are those of a song at 120 bpm throughout, in which
/// a quarter lasts half a second.
double smpte_ticks_per_quarter(std::uint32_t division) {
    const int frames_per_second = 256 - static_cast<int>(division >> 8);
    const int ticks_per_frame = static_cast<int>(division & 0xFF);
    const double frame_rate = frames_per_second == 29 ? 30000.0 / 1001 : frames_per_second;
    return frame_rate * ticks_per_frame / 2;
}

file_header read_header(midi_song& song, byte_reader chunk) {
    file_header header;
    header.format = static_cast<int>(chunk.take_number(2));
    header.nb_tracks = static_cast<int>(chunk.take_number(2));
    const std::uint32_t division = chunk.take_number(2);
    header.counts_smpte_frames = (division & 0x8000) != 0;
    header.ticks_per_quarter = header.counts_smpte_frames ? smpte_ticks_per_quarter(division)
                                                          : static_cast<double>(division);
    if (header.format > 2)
        midi_song_warn(song, "the format is unknown; it is read as format 1");
    if (header.ticks_per_quarter == 0) {
        midi_song_warn(song, "the division of time is 0; 480 ticks a quarter are assumed");
        header.ticks_per_quarter = default_ticks_per_quarter;
    }
    return header;
}

struct track_totals {
    int nb_tracks = 0;
    std::uint64_t end_tick = 0;
};

track_totals read_tracks(midi_song& song, byte_reader reader, bool one_after_another) {
    track_totals totals;
    while (!reader.rest.empty()) {
        const std::uint32_t id = reader.take_number(4);
        const auto chunk = reader.take(reader.take_number(4));
        if (reader.overrun)
            midi_song_warn(song,
                           "the file is cut off or damaged: a part of it is shorter than it says");
        if (id != chunk_id("MTrk"))
            continue;
        const std::uint64_t start_tick = one_after_another ? totals.end_tick : 0;
        if (one_after_another)
            song.tempi.push_back({start_tick, 0, 0, default_us_per_quarter});
        ++totals.nb_tracks;
        totals.end_tick =
            std::max(totals.end_tick, midi_track_read(song, chunk, totals.nb_tracks, start_tick));
    }
    return totals;
}

double quarters_between(std::uint64_t from, std::uint64_t to, double ticks_per_quarter) {
    return static_cast<double>(to - from) / ticks_per_quarter;
}

/// From whole ticks by one product and one quotient, so no error adds up within a tempo.
double seconds_at(const midi_tempo& tempo, std::uint64_t tick, double ticks_per_quarter) {
    return tempo.seconds
           + static_cast<double>(tick - tempo.tick) * tempo.us_per_quarter
                 / (1e6 * ticks_per_quarter);
}

void sort_by_tick(auto& list) {
    std::stable_sort(list.begin(), list.end(),
                     [](const auto& a, const auto& b) { return a.tick < b.tick; });
}

void lay_out_tempi(midi_song& song, const file_header& header) {
    if (header.counts_smpte_frames)
        song.tempi.clear();
    song.tempi.insert(song.tempi.begin(), {0, 0, 0, default_us_per_quarter});
    sort_by_tick(song.tempi);
    for (std::size_t i = 1; i < song.tempi.size(); ++i) {
        const midi_tempo& before = song.tempi[i - 1];
        midi_tempo& tempo = song.tempi[i];
        tempo.seconds = seconds_at(before, tempo.tick, header.ticks_per_quarter);
        tempo.quarters =
            before.quarters + quarters_between(before.tick, tempo.tick, header.ticks_per_quarter);
    }
}

void time_events(midi_song& song, const file_header& header, std::uint64_t end_tick) {
    sort_by_tick(song.events);
    auto tempo = song.tempi.begin();
    const auto seconds = [&](std::uint64_t tick) {
        while (std::next(tempo) != song.tempi.end() && std::next(tempo)->tick <= tick)
            ++tempo;
        return seconds_at(*tempo, tick, header.ticks_per_quarter);
    };
    for (midi_event& event : song.events)
        event.seconds = seconds(event.tick);
    song.seconds = seconds(end_tick);
}

} // namespace

midi_song midi_file_read(std::span<const std::uint8_t> file) {
    midi_song song;
    byte_reader reader{file};
    if (file.size() > midi_file_max_bytes) {
        song.error = "is larger than 8 MiB, so it is no song";
        return song;
    }
    if (reader.take_number(4) != chunk_id("MThd")) {
        song.error = "is no MIDI file: it does not start with MThd";
        return song;
    }
    const auto header_chunk = reader.take(reader.take_number(4));
    if (reader.overrun || header_chunk.size() < 6) {
        song.error = "breaks off in its header, so nothing can be read";
        return song;
    }

    const file_header header = read_header(song, {header_chunk});
    const track_totals totals = read_tracks(song, reader, header.format == 2);
    if (totals.nb_tracks == 0) {
        song.error = "holds no track";
        return song;
    }
    if (totals.nb_tracks < header.nb_tracks)
        midi_song_warn(song, std::to_string(header.nb_tracks - totals.nb_tracks)
                                 + " of its tracks are missing");
    lay_out_tempi(song, header);
    time_events(song, header, totals.end_tick);
    return song;
}

std::span<const std::uint8_t> midi_song_message(const midi_song& song, const midi_event& event) {
    return std::span{song.bytes}.subspan(event.offset, event.nb_bytes);
}

void midi_song_warn(midi_song& song, std::string sentence) {
    if (song.warnings.size() < max_warnings)
        song.warnings.push_back(std::move(sentence));
    else if (song.warnings.size() == max_warnings)
        song.warnings.emplace_back("there is more damage than can be told");
}
