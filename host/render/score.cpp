#include "render/score.h"

#include <cmath>

namespace {

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

    void add(std::uint64_t frame, message_view message) {
        const std::uint8_t kind = message_kind_of(message);
        if (kind == message_sysex)
            return append(frame, message);
        const std::size_t channel = message_channel(message);
        if (!options_.channels[channel]) {
            music_.nb_unwished += message_is_stroke(message);
            return;
        }
        if (kind == message_note_off || kind == message_note_on || kind == message_key_pressure)
            return add_key(frame, message, kind);
        if (message_is_controller(message, controller_sustain))
            channels_[channel].holds_pedal = message_holds_pedal(message);
        append(frame, message);
    }

    void add_key(std::uint64_t frame, message_view message, std::uint8_t kind) {
        const bool strikes = message_is_stroke(message);
        if (strikes)
            ++music_.notes_before_transposition[message[1]];
        const int note = message[1] + options_.transposition;
        if (note < 0 || note >= nb_midi_notes)
            return;
        const std::array transposed{message[0], static_cast<std::uint8_t>(note), message[2]};
        append(frame, transposed);

        auto& nb_strokes =
            channels_[message_channel(message)].nb_strokes[static_cast<std::size_t>(note)];
        if (strikes)
            ++nb_strokes;
        else if (kind != message_key_pressure && nb_strokes > 0)
            --nb_strokes;
    }

    // As many releases as strokes: instruments that count them would hold the note otherwise.
    void release_all() {
        for (std::size_t channel = 0; channel < channels_.size(); ++channel) {
            const channel_state& state = channels_[channel];
            for (std::size_t note = 0; note < state.nb_strokes.size(); ++note)
                for (std::uint32_t i = 0; i < state.nb_strokes[note]; ++i)
                    append(music_.nb_frames, message_release(channel, note));
            if (state.holds_pedal)
                append(music_.nb_frames,
                       message_make(message_control_change, channel, controller_sustain, 0));
        }
    }

    void append(std::uint64_t frame, message_view message) {
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

message_view score_message(const score& music, const score_event& event) {
    return std::span{music.bytes}.subspan(event.offset, event.nb_bytes);
}
