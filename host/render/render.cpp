#include "render/render.h"

#include "render/song_clock.h"

#include <algorithm>
#include <cmath>

namespace {

// A damaged song may hold heaps of them at one time.
constexpr std::size_t max_events_a_list = 1024;

/// Watches the sound after the song's end, from which alone silence counts.
class tail_watch {
public:
    tail_watch(std::uint64_t song_frames, const render_options& options)
        : song_frames_{song_frames},
          end_frame_{
              song_frames
              + static_cast<std::uint64_t>(std::llround(options.tail_seconds * options.rate_hz))},
          nb_frames_of_silence_{
              static_cast<std::uint64_t>(std::llround(silence_seconds * options.rate_hz))} {}

    /// Takes the frame's peak; returns whether another frame follows.
    bool goes_on(float peak) {
        ++frame_;
        if (frame_ > song_frames_)
            nb_silent_ = peak < static_cast<float>(silence_gain) ? nb_silent_ + 1 : 0;
        return frame_ < end_frame_ && nb_silent_ < nb_frames_of_silence_;
    }

    std::uint64_t end_frame() const { return end_frame_; }

private:
    std::uint64_t song_frames_;
    std::uint64_t end_frame_;
    std::uint64_t nb_frames_of_silence_;
    std::uint64_t frame_ = 0;
    std::uint64_t nb_silent_ = 0;
};

class performance {
public:
    performance(plugin& instrument, console& desk, const score& music,
                std::span<const midi_tempo> tempi, const render_options& options)
        : instrument_{instrument},
          desk_{desk},
          music_{music},
          clock_{tempi, options.rate_hz},
          options_{options},
          tail_{music.nb_frames, options} {}

    void play(const render_listener& listener) {
        const auto block_frames = static_cast<std::uint64_t>(options_.block_frames);
        bool goes_on = tail_.end_frame() > 0;
        for (std::uint64_t frame = 0; goes_on; frame += block_frames) {
            const double done = static_cast<double>(frame)
                                / static_cast<double>(std::max<std::uint64_t>(1, music_.nb_frames));
            if (!listener.goes_on(std::min(done, 1.0)))
                return;
            clock_.tell(instrument_, frame);
            send_events(frame, frame + block_frames);
            instrument_.process();
            goes_on = interleave();
            listener.hear(samples_);
        }
    }

private:
    void send_events(std::uint64_t frame, std::uint64_t end_frame) {
        list_.clear();
        for (; next_event_ < music_.events.size(); ++next_event_) {
            const score_event& event = music_.events[next_event_];
            if (event.frame >= end_frame)
                break;
            if (list_.size() == max_events_a_list) {
                instrument_.send(list_);
                list_.clear();
            }
            desk_.take(score_message(music_, event), static_cast<int>(event.frame - frame), list_);
        }
        if (!list_.is_empty())
            instrument_.send(list_);
    }

    /// Takes the block's frames up to the end of the tail; returns whether another block follows.
    bool interleave() {
        samples_.clear();
        bool goes_on = true;
        for (std::size_t i = 0; goes_on && i < instrument_.output(0).size(); ++i) {
            float peak = 0;
            for (int channel = 0; channel < instrument_.nb_channels(); ++channel) {
                const float sample = instrument_.output(channel)[i];
                samples_.push_back(sample);
                peak = std::max(peak, std::abs(sample));
            }
            goes_on = tail_.goes_on(peak);
        }
        return goes_on;
    }

    plugin& instrument_;
    console& desk_;
    const score& music_;
    song_clock clock_;
    const render_options& options_;
    tail_watch tail_;
    event_list list_{};
    std::size_t next_event_ = 0;
    std::vector<float> samples_{};
};

} // namespace

void render_score(plugin& instrument, console& desk, const score& music,
                  std::span<const midi_tempo> tempi, const render_options& options,
                  const render_listener& listener) {
    instrument.require_sound();
    instrument.start();
    performance{instrument, desk, music, tempi, options}.play(listener);
    instrument.stop();
}
