#include "live/live_instrument.h"

#include "platform/denormals.h"

#include <algorithm>
#include <cmath>

namespace {

// Servers take up to 8,192 frames at once; the instrument gets them in pieces.
constexpr std::size_t piece_frames = 1024;
constexpr std::size_t max_arrivals = 4096;
constexpr std::size_t max_releases = // keys and feet, twice
    std::size_t{4} * nb_midi_channels * nb_midi_notes;
constexpr double usual_tempo = 120;

constexpr auto all_sound_off = [] {
    std::array<short_message, nb_midi_channels> messages{};
    for (std::size_t channel = 0; channel < messages.size(); ++channel)
        messages[channel] =
            message_make(message_control_change, channel, controller_all_sound_off, 0);
    return messages;
}();

bool is_whole(message_view message) {
    if (message.empty() || message[0] < message_note_off)
        return false;
    const std::uint8_t kind = message_kind_of(message);
    if (kind >= message_sysex)
        return kind == message_sysex;
    const bool is_short = kind == message_program_change || kind == message_channel_pressure;
    return message.size() == (is_short ? 2u : 3u)
           && std::ranges::all_of(message.subspan(1),
                                  [](std::uint8_t byte) { return byte < 0x80; });
}

void raise_to(std::atomic<float>& peak, float level) {
    if (level > peak.load(std::memory_order_relaxed))
        peak.store(level, std::memory_order_relaxed);
}

} // namespace

live_instrument::live_instrument(plugin& instrument, console& players, console& songs,
                                 live_song song)
    : instrument_{instrument}, players_{players}, songs_{songs}, song_{std::move(song)} {
    arrivals_.reserve(max_arrivals);
    own_messages_.reserve(message_queue::capacity);
    list_.reserve(max_arrivals + max_releases + all_sound_off.size());
}

void live_instrument::start(int rate_hz) {
    stop();
    const double song_seconds =
        rate_hz_ == 0 ? 0 : static_cast<double>(song_frame_) / static_cast<double>(rate_hz_);
    rate_hz_ = rate_hz;
    music_ = score_arrange(song_.song, song_.arrangement, rate_hz);
    song_frame_ = static_cast<std::uint64_t>(std::llround(song_seconds * rate_hz));
    const auto next = std::ranges::lower_bound(music_.events, song_frame_, {}, &score_event::frame);
    next_event_ = static_cast<std::size_t>(next - music_.events.begin());
    if (music_.nb_frames > 0)
        clock_.emplace(song_.song.tempi, rate_hz);
    instrument_.require_sound();
    instrument_.prepare(rate_hz, static_cast<int>(piece_frames));
    instrument_.time().tempo = usual_tempo;
    instrument_.time().flags = kVstTempoValid;
    instrument_.start(host_activity::plays);
    frame_ = 0;
    panic(); // of what was held as the sound went away
}

void live_instrument::stop() { instrument_.stop(); }

void live_instrument::take(message_view message, std::size_t frame) noexcept {
    if (is_whole(message))
        add(message, frame, origin::player);
}

void live_instrument::process(std::span<float* const> outputs, std::size_t nb_frames) noexcept {
    denormals_turn_off();
    take_wishes();
    if (is_finished_) // which is said before the last panic is asked for
        arrivals_.clear();
    else
        add_song(nb_frames);
    std::sort(arrivals_.begin(), arrivals_.end(), [](const arrival& one, const arrival& other) {
        return std::pair{one.frame, one.order} < std::pair{other.frame, other.order};
    });
    auto next = arrivals_.begin();
    for (std::size_t begin = 0; begin < nb_frames; begin += piece_frames) {
        const std::size_t end = std::min(begin + piece_frames, nb_frames);
        for (; next != arrivals_.end() && (next->frame < end || end == nb_frames); ++next)
            pass_on(*next, std::min(next->frame, end - 1) - begin);
        if (!list_.is_empty())
            instrument_.send(list_);
        list_.clear();
        instrument_.process(static_cast<int>(end - begin));
        hand_out(outputs, begin, end - begin);
    }
    arrivals_.clear();
    own_messages_.clear();
    frame_ += nb_frames;
}

void live_instrument::add(message_view message, std::size_t frame, origin from) noexcept {
    if (arrivals_.size() < max_arrivals)
        arrivals_.push_back({frame, arrivals_.size(), message, from});
}

/// The keys of the window, and what the window asked for; all act at the block's beginning.
void live_instrument::take_wishes() noexcept {
    if (asked_release_.exchange(false))
        release_all(player_keys_, players_);
    if (asked_panic_.exchange(false))
        silence_all();
    while (own_messages_.size() < message_queue::capacity) {
        const auto message = panel_keys_.pop();
        if (!message)
            break;
        own_messages_.push_back(message->bytes);
        add(own_messages_.back(), 0, origin::player);
    }
}

/// What of the song lies in the block; where it jumps or ends, all its sound does.
void live_instrument::add_song(std::size_t nb_frames) noexcept {
    if (music_.nb_frames == 0 || song_has_ended_)
        return;
    clock_->tell(instrument_, song_frame_);
    for (std::size_t at = 0;;) {
        const std::uint64_t end = song_frame_ + (nb_frames - at);
        for (; next_event_ < music_.events.size(); ++next_event_) {
            const score_event& event = music_.events[next_event_];
            if (event.frame >= end)
                break;
            add(score_message(music_, event), at + event.frame - song_frame_, origin::song);
        }
        if (end <= music_.nb_frames) {
            song_frame_ = end;
            return;
        }
        at += music_.nb_frames - song_frame_; // where its last releases are, too
        for (const short_message& message : all_sound_off)
            add(message, at, origin::song);
        song_frame_ = 0;
        next_event_ = 0;
        if (!song_.loops) {
            song_has_ended_ = true;
            return;
        }
    }
}

void live_instrument::pass_on(const arrival& next, std::size_t frame) noexcept {
    const bool is_songs = next.from == origin::song;
    auto& keys_down = (is_songs ? song_keys_ : player_keys_)[message_channel(next.message)];
    if (message_is_stroke(next.message))
        keys_down.set(next.message[1]);
    else if (message_is_release(next.message))
        keys_down.reset(next.message[1]);
    (is_songs ? songs_ : players_).take(next.message, static_cast<int>(frame), list_);
}

void live_instrument::release_all(keys& held, console& its_console) noexcept {
    its_console.lift_pedals(0, list_);
    for (std::size_t channel = 0; channel < held.size(); ++channel)
        for (std::size_t note = 0; held[channel].any() && note < nb_midi_notes; ++note)
            if (held[channel][note]) {
                held[channel].reset(note);
                list_.add(message_release(channel, note), 0);
            }
}

void live_instrument::silence_all() noexcept {
    release_all(player_keys_, players_);
    release_all(song_keys_, songs_);
    for (const short_message& message : all_sound_off)
        list_.add(message, 0);
}

void live_instrument::hand_out(std::span<float* const> outputs, std::size_t begin,
                               std::size_t nb) noexcept {
    const int last = instrument_.nb_channels() - 1;
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        const auto samples = instrument_.output(std::min(static_cast<int>(i), last)).first(nb);
        float peak = 0;
        std::ranges::transform(samples, outputs[i] + begin, [&peak](float sample) {
            const float sound = std::isfinite(sample) ? sample : 0.0f;
            peak = std::max(peak, std::abs(sound));
            return sound;
        });
        if (i < peaks_.size())
            raise_to(peaks_[i], peak);
    }
    int nb_held = 0;
    for (std::size_t channel = 0; channel < nb_midi_channels; ++channel)
        nb_held += static_cast<int>((player_keys_[channel] | song_keys_[channel]).count());
    nb_held_ = nb_held;
}

void live_instrument::press(int note) {
    panel_keys_.push(
        {.bytes = message_make(message_note_on, 0, static_cast<std::size_t>(note), 100)});
}

void live_instrument::release(int note) {
    panel_keys_.push({.bytes = message_release(0, static_cast<std::size_t>(note))});
}

live_levels live_instrument::take_levels() {
    return {{peaks_[0].exchange(0), peaks_[1].exchange(0)}, nb_held_};
}
