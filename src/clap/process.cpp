#include "clap/process.h"

#include "clap/events.h"
#include "clap/parameters.h"
#include "clap/plugin.h"
#include "midi/midi.h"

#include <algorithm>
#include <array>
#include <bit>
#include <span>

namespace {

constexpr clap_event_note every_note{{}, -1, -1, -1, -1, 0};

/// A velocity of 0 is a note, too.
int midi_velocity(double velocity) noexcept NONBLOCKING {
    constexpr double highest = midi_highest_value;
    return velocity > 0 ? std::max(static_cast<int>(std::min(velocity, 1.0) * highest), 1) : 1;
}

/// A block is cut where a parameter moves, or a note is choked. Everything else reaches the player
/// with its frame in the part that is to come.
class block {
public:
    block(player& its_player, clap_instrument& instrument, const clap_process& process,
          std::span<float> out_r, std::span<float> out_l) noexcept NONBLOCKING
        : playing(its_player),
          sounding(instrument.sounding),
          sent(process.out_events),
          right(out_r),
          left(out_l),
          last_frame(std::max(process.frames_count, 1u) - 1) {}

    /// Frames beyond the block and ones that go back are moved, as the player does it.
    void play(const clap_input_events* in) noexcept NONBLOCKING {
        const std::uint32_t nb_events = clap_nb_events(in);
        std::uint32_t frame = 0;
        for (std::uint32_t i = 0; i < nb_events;) {
            frame = frame_of(in->get(in, i), frame);
            std::uint32_t end = i;
            bool is_cut = false;
            for (; end < nb_events && frame_of(in->get(in, end), frame) == frame; ++end)
                is_cut = is_cut || cuts(in->get(in, end));
            if (is_cut)
                render_to(frame);
            for (; i < end; ++i)
                receive(in->get(in, i), frame);
        }
        render_to(right.size());
        report_ends();
    }

private:
    [[nodiscard]] std::uint32_t frame_of(const clap_event_header* event,
                                         std::uint32_t before) const noexcept NONBLOCKING {
        return event ? std::max(before, std::min(event->time, last_frame)) : before;
    }

    [[nodiscard]] bool cuts(const clap_event_header* event) const noexcept NONBLOCKING {
        const auto* const moved =
            clap_event_as<clap_event_param_value>(event, CLAP_EVENT_PARAM_VALUE);
        return (moved && clap_parameter_moves(&playing, *moved))
               || clap_event_as<clap_event_note>(event, CLAP_EVENT_NOTE_CHOKE);
    }

    void render_to(std::size_t frame) noexcept NONBLOCKING {
        frame = std::min(frame, right.size());
        if (frame <= start)
            return;
        const std::size_t nb_frames = frame - start;
        player_process(&playing, right.subspan(start, nb_frames), left.subspan(start, nb_frames));
        start = frame;
    }

    /// Of all whose key has ended its release, or never was. A host that does not take it is told
    /// again after the next block.
    void report_ends() noexcept NONBLOCKING {
        sounding.for_each(every_note, [this](const clap_event_note& voice) noexcept NONBLOCKING {
            if (!player_sounds(&playing, voice.key)
                && clap_send(sent, voice, CLAP_EVENT_NOTE_END, last_frame))
                sounding.end(voice);
        });
    }

    void send_note(int kind, const clap_event_note& voice, double velocity,
                   std::uint32_t frame) noexcept NONBLOCKING {
        send_midi({static_cast<char>(kind | voice.channel), static_cast<char>(voice.key),
                   static_cast<char>(midi_velocity(velocity))},
                  frame);
    }

    /// A controller acts at once, on the part that is to come.
    void send_midi(const std::array<char, 3>& message, std::uint32_t frame) noexcept NONBLOCKING {
        const int in_part = static_cast<int>(frame - static_cast<std::uint32_t>(start));
        for (const int index : player_receive_midi_event(&playing, message.data(), in_part)) {
            const auto id = static_cast<clap_id>(index);
            const auto moved = clap_value_event(id, clap_shown_value(&playing, id));
            clap_send(sent, moved, CLAP_EVENT_PARAM_VALUE, frame, CLAP_EVENT_DONT_RECORD);
        }
    }

    void receive(const clap_event_header* event, std::uint32_t frame) noexcept NONBLOCKING {
        if (const auto* on = clap_event_as<clap_event_note>(event, CLAP_EVENT_NOTE_ON)) {
            if (sounding.begin(*on))
                send_note(midi_note_on, *on, on->velocity, frame);
        } else if (const auto* off = clap_event_as<clap_event_note>(event, CLAP_EVENT_NOTE_OFF)) {
            sounding.for_each(*off, [&](const clap_event_note& voice) noexcept NONBLOCKING {
                send_note(midi_note_off, voice, off->velocity, frame);
            });
        } else if (const auto* choked =
                       clap_event_as<clap_event_note>(event, CLAP_EVENT_NOTE_CHOKE)) {
            sounding.for_each(*choked, [&](const clap_event_note& voice) noexcept NONBLOCKING {
                player_choke(&playing, voice.key);
            });
        } else if (const auto* moved =
                       clap_event_as<clap_event_param_value>(event, CLAP_EVENT_PARAM_VALUE)) {
            clap_set_parameter(&playing, *moved);
        } else if (const auto* midi = clap_event_as<clap_event_midi>(event, CLAP_EVENT_MIDI)) {
            if (midi->port_index == 0)
                send_midi(std::bit_cast<std::array<char, 3>>(midi->data), frame);
        }
    }

    player& playing;
    voices& sounding;
    const clap_output_events* sent;
    std::span<float> right; ///< empty where the host has no outputs, as the next
    std::span<float> left;
    std::uint32_t last_frame;
    std::size_t start = 0; ///< of the part that is to come
};

} // namespace

clap_process_status clap_process_block(const clap_plugin* plugin,
                                       const clap_process* process) noexcept {
    clap_instrument& self = clap_instrument_of(plugin);
    clap_audio_buffer* const output =
        process->audio_outputs_count > 0 ? process->audio_outputs : nullptr;
    const bool is_connected = output && output->data32 && output->channel_count >= 2
                              && output->data32[0] && output->data32[1];
    std::span<float> right, left;
    if (is_connected) {
        right = {output->data32[0], process->frames_count};
        left = {output->data32[1], process->frames_count};
    }
    player& playing = self.played.playing();
    clap_send_edits(self, process->out_events);
    block(playing, self, *process, right, left).play(process->in_events);
    if (!is_connected)
        return CLAP_PROCESS_ERROR;

    const organ& engine = *playing.p_organ;
    const bool is_silent = engine.is_resting || engine.sampling_rate == 0;
    const auto is_zero = [](float sample) { return sample == 0; };
    output->constant_mask =
        is_silent && std::ranges::all_of(right, is_zero) && std::ranges::all_of(left, is_zero) ? 3
                                                                                               : 0;
    return is_silent && self.sounding.empty() ? CLAP_PROCESS_SLEEP : CLAP_PROCESS_CONTINUE;
}
