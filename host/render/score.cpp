#include "render/score.h"

#include <cmath>

namespace {

constexpr std::uint8_t note_off = 0x80;
constexpr std::uint8_t note_on = 0x90;
constexpr std::uint8_t key_pressure = 0xA0;
constexpr std::uint8_t control_change = 0xB0;
constexpr std::uint8_t sysex_start = 0xF0;
constexpr std::uint8_t sustain_pedal = 64;
constexpr std::uint8_t pedal_down = 64; // from this value up

bool is_stroke(std::span<const std::uint8_t> message) {
    return (message[0] & 0xF0) == note_on && message[2] > 0;
}

class arranger {
public:
    arranger(const midi_song& song, const score_options& options, int rate_hz)
        : song_{song}, options_{options}, rate_hz_{rate_hz} {}

    score arrange() {
        const bool is_cut = options_.max_seconds > 0 && options_.max_seconds < song_.seconds;
        const double end_seconds = is_cut ? options_.max_seconds : song_.seconds;
        music_.bytes.reserve(song_.bytes.size());
        music_.events.reserve(song_.events.size());
        for (const midi_event& event : song_.events)
            if (!is_cut || event.seconds < end_seconds)
                add(frame_at(event.seconds), midi_song_message(song_, event));
        music_.nb_frames = frame_at(end_seconds);
        release_all();
        return std::move(music_);
    }

private:
    struct channel_state {
        std::array<std::uint32_t, nb_midi_notes> nb_strokes{};
        bool holds_pedal = false;
    };

    std::uint64_t frame_at(double seconds) const {
        return static_cast<std::uint64_t>(std::llround(seconds * rate_hz_));
    }

    void add(std::uint64_t frame, std::span<const std::uint8_t> message) {
        if (message[0] == sysex_start)
            return append(frame, message);
        const std::size_t channel = message[0] & 0x0F;
        const std::uint8_t kind = message[0] & 0xF0;
        if (!options_.channels[channel]) {
            music_.nb_unwished += is_stroke(message);
            return;
        }
        if (kind == note_off || kind == note_on || kind == key_pressure)
            return add_key(frame, message, kind);
        if (kind == control_change && message[1] == sustain_pedal)
            channels_[channel].holds_pedal = message[2] >= pedal_down;
        append(frame, message);
    }

    void add_key(std::uint64_t frame, std::span<const std::uint8_t> message, std::uint8_t kind) {
        const bool strikes = is_stroke(message);
        if (strikes)
            ++music_.notes_before_transposition[message[1]];
        const int note = message[1] + options_.transposition;
        if (note < 0 || note >= nb_midi_notes)
            return;
        const std::array transposed{message[0], static_cast<std::uint8_t>(note), message[2]};
        append(frame, transposed);

        auto& nb_strokes = channels_[message[0] & 0x0F].nb_strokes[static_cast<std::size_t>(note)];
        if (strikes)
            ++nb_strokes;
        else if (kind != key_pressure && nb_strokes > 0)
            --nb_strokes;
    }

    // As many releases as strokes: instruments that count them would hold the note otherwise.
    void release_all() {
        for (std::size_t channel = 0; channel < channels_.size(); ++channel) {
            const channel_state& state = channels_[channel];
            for (std::size_t note = 0; note < state.nb_strokes.size(); ++note)
                for (std::uint32_t i = 0; i < state.nb_strokes[note]; ++i)
                    append(music_.nb_frames,
                           std::array{on_channel(note_off, channel),
                                      static_cast<std::uint8_t>(note), std::uint8_t{64}});
            if (state.holds_pedal)
                append(music_.nb_frames, std::array{on_channel(control_change, channel),
                                                    sustain_pedal, std::uint8_t{0}});
        }
    }

    static std::uint8_t on_channel(std::uint8_t kind, std::size_t channel) {
        return static_cast<std::uint8_t>(kind | channel);
    }

    void append(std::uint64_t frame, std::span<const std::uint8_t> message) {
        music_.events.push_back({frame, static_cast<std::uint32_t>(music_.bytes.size()),
                                 static_cast<std::uint32_t>(message.size())});
        music_.bytes.insert(music_.bytes.end(), message.begin(), message.end());
    }

    const midi_song& song_;
    const score_options& options_;
    int rate_hz_;
    score music_{};
    std::array<channel_state, nb_midi_channels> channels_{};
};

} // namespace

score score_arrange(const midi_song& song, const score_options& options, int rate_hz) {
    return arranger{song, options, rate_hz}.arrange();
}

std::span<const std::uint8_t> score_message(const score& music, const score_event& event) {
    return std::span{music.bytes}.subspan(event.offset, event.nb_bytes);
}
