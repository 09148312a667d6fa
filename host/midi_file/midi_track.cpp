#include "midi_file/midi_track.h"

#include "message/message.h"
#include "midi_file/byte_reader.h"

#include <optional>

namespace {

constexpr std::uint8_t status_bit = 0x80;
constexpr std::uint8_t sysex_end = 0xF7; // in a file also: a SysEx message goes on, or an escape
constexpr std::uint8_t meta_event = 0xFF;
constexpr std::uint8_t meta_end_of_track = 0x2F;
constexpr std::uint8_t meta_tempo = 0x51;

/// A number in groups of 7 bits, 4 groups at most; nothing if there are more or the end comes
/// first.
std::optional<std::uint32_t> take_variable_length(byte_reader& reader) {
    std::uint32_t number = 0;
    for (int group = 0; group < 4; ++group) {
        const std::uint8_t byte = reader.take_byte();
        number = number << 7 | (byte & 0x7Fu);
        if (!(byte & status_bit))
            return reader.overrun ? std::nullopt : std::optional{number};
    }
    return std::nullopt;
}

constexpr std::size_t nb_data_bytes(std::uint8_t status) {
    const int kind = status & 0xF0;
    return kind == 0xC0 || kind == 0xD0 ? 1 : 2;
}

class track_parser {
public:
    track_parser(midi_song& song, std::span<const std::uint8_t> track, int number,
                 std::uint64_t start_tick)
        : song_{song}, reader_{track}, number_{number}, tick_{start_tick} {}

    std::uint64_t parse() {
        while (!ended_ && !reader_.rest.empty()) {
            if (const auto delta = take_variable_length(reader_)) {
                tick_ += *delta;
                parse_event(reader_.take_byte());
            } else {
                give_up("has a delta time that never ends");
            }
        }
        close_sysex();
        return tick_;
    }

private:
    void parse_event(std::uint8_t first) {
        if (reader_.overrun)
            return give_up("breaks off inside an event");
        if (first != sysex_end)
            close_sysex();
        if (first == meta_event)
            parse_meta();
        else if (first == message_sysex || first == sysex_end)
            parse_sysex(first);
        else if (first > message_sysex)
            give_up("holds a message that no file may hold");
        else
            parse_channel_message(first);
    }

    void parse_channel_message(std::uint8_t first) {
        std::size_t nb_missing = 0;
        if (first & status_bit) {
            running_status_ = first;
            nb_missing = nb_data_bytes(first);
        } else if (running_status_) {
            nb_missing = nb_data_bytes(running_status_) - 1;
        } else {
            return give_up("starts with data that belongs to no message");
        }
        const auto data = reader_.take(nb_missing);
        if (reader_.overrun)
            return give_up("breaks off inside an event");

        const auto offset = song_.bytes.size();
        song_.bytes.push_back(running_status_);
        if (!(first & status_bit))
            song_.bytes.push_back(first);
        for (const std::uint8_t byte : data) {
            if (byte & status_bit)
                warn_of_data();
            song_.bytes.push_back(byte & 0x7F);
        }
        add_event(offset);
    }

    // Running status is kept across meta and SysEx events: the format forbids to rely on it, yet
    // some sequencers do, and a reader that forgets it loses the rest of their tracks.
    void parse_meta() {
        const std::uint8_t type = reader_.take_byte();
        const auto data = take_counted();
        if (!data)
            return;
        if (type == meta_end_of_track)
            ended_ = true;
        if (type == meta_tempo)
            add_tempo(*data);
    }

    void add_tempo(std::span<const std::uint8_t> data) {
        const std::uint32_t us_per_quarter = byte_reader{data}.take_number(3);
        if (data.size() < 3 || us_per_quarter == 0)
            return warn("has a tempo that means nothing; it is ignored");
        song_.tempi.push_back({tick_, 0, 0, us_per_quarter});
    }

    // A long SysEx message may come in packets: F0 and data, then F7 and data until an F7 ends it.
    // F7 where no message waits escapes other bytes, which nothing here can use.
    void parse_sysex(std::uint8_t first) {
        const auto data = take_counted();
        if (!data || (first == sysex_end && !sysex_offset_))
            return;
        if (first == message_sysex) {
            sysex_offset_ = song_.bytes.size();
            song_.bytes.push_back(message_sysex);
        }
        song_.bytes.insert(song_.bytes.end(), data->begin(), data->end());
        if (!data->empty() && data->back() == sysex_end)
            close_sysex();
    }

    void close_sysex() {
        if (!sysex_offset_)
            return;
        if (song_.bytes.back() != sysex_end)
            song_.bytes.push_back(sysex_end);
        add_event(*sysex_offset_);
        sysex_offset_.reset();
    }

    /// The data of an event that gives its own length.
    std::optional<std::span<const std::uint8_t>> take_counted() {
        const auto nb_bytes = take_variable_length(reader_);
        const auto data = reader_.take(nb_bytes.value_or(0));
        if (nb_bytes && !reader_.overrun)
            return data;
        give_up("breaks off inside an event");
        return std::nullopt;
    }

    void add_event(std::size_t offset) {
        song_.events.push_back({tick_, 0, static_cast<std::uint32_t>(offset),
                                static_cast<std::uint32_t>(song_.bytes.size() - offset)});
    }

    void warn(const char* what) {
        midi_song_warn(song_, "track " + std::to_string(number_) + " " + what);
    }

    void warn_of_data() {
        if (!warned_of_data_)
            warn("has data bytes out of range; their top bit is ignored");
        warned_of_data_ = true;
    }

    void give_up(const char* what) {
        warn((std::string{what} + "; the rest of it is left out").c_str());
        ended_ = true;
    }

    midi_song& song_;
    byte_reader reader_;
    int number_;
    std::uint64_t tick_;
    std::uint8_t running_status_ = 0;
    std::optional<std::size_t> sysex_offset_{}; // of a message whose end has not come yet
    bool ended_ = false;
    bool warned_of_data_ = false;
};

} // namespace

std::uint64_t midi_track_read(midi_song& song, std::span<const std::uint8_t> track, int number,
                              std::uint64_t start_tick) {
    return track_parser{song, track, number, start_tick}.parse();
}
