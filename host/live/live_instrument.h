#pragma once
/// An instrument that is played as it sounds: by the messages of keyboards, each on its frame, by
/// the keys of a window, and by a song that runs along. [setup] is for while no audio thread is
/// there; the audio thread allocates nothing, takes no lock and makes no call into the system.

#include "console/console.h"
#include "live/message_queue.h"
#include "render/score.h"
#include "render/song_clock.h"

struct live_song {
    midi_song song{};
    score_options arrangement{};
    bool loops = false;
};

/// What the audio thread tells of itself.
struct live_levels {
    std::array<float, 2> peaks{}; ///< since they were asked for last
    int nb_held = 0;              ///< keys that are down
};

class live_instrument {
public:
    /// All that is named outlives it. The song has a console of its own, whose pedals and programs
    /// are not the player's. [setup]
    live_instrument(plugin& instrument, console& players, console& songs, live_song song);

    /// Starts it at this rate, silent, with the song where it was. [setup]
    void start(int rate_hz);
    void stop(); ///< [setup]

    /// Takes what comes in the next block, which frame by frame is played then. What is no whole
    /// channel message or dump is dropped. A dump's bytes stay until then. [audio]
    void take(message_view message, std::size_t frame) noexcept;

    /// Plays a block of any length into one output or two. [audio]
    void process(std::span<float* const> outputs, std::size_t nb_frames) noexcept;

    // From here on, [ui].

    void press(int note);
    void release(int note);
    void release_keys() { asked_release_ = true; } ///< all that the player holds; feet as well
    void panic() { asked_panic_ = true; }          ///< and what sounds ends
    /// Panics, and from then on plays nothing: neither the song nor what comes.
    void finish() {
        is_finished_ = true;
        panic();
    }
    [[nodiscard]] bool is_quiet() const { return !asked_panic_; } ///< since it was panicked
    [[nodiscard]] bool song_has_ended() const { return song_has_ended_; }
    [[nodiscard]] double song_seconds() const { return song_.song.seconds; }
    [[nodiscard]] live_levels take_levels();

    /// Since the start. [any]
    [[nodiscard]] std::uint64_t nb_frames() const { return frame_; }

private:
    enum class origin : std::uint8_t { player, song };
    struct arrival {
        std::size_t frame; ///< in the block
        std::size_t order; ///< of those at one frame
        message_view message;
        origin from;
    };
    using keys = std::array<std::bitset<nb_midi_notes>, nb_midi_channels>;

    void add(message_view message, std::size_t frame, origin from) noexcept;
    void add_song(std::size_t nb_frames) noexcept;
    void take_wishes() noexcept;
    void release_all(keys& held, console& its_console) noexcept;
    void silence_all() noexcept;
    void pass_on(const arrival& next, std::size_t frame) noexcept;
    void hand_out(std::span<float* const> outputs, std::size_t begin, std::size_t nb) noexcept;

    plugin& instrument_;
    console& players_;
    console& songs_;
    live_song song_;
    score music_{};
    std::optional<song_clock> clock_{};
    int rate_hz_ = 0;

    // The audio thread's.
    std::vector<arrival> arrivals_{};
    std::vector<short_message> own_messages_{}; // the window's, in this block
    event_list list_{};
    keys player_keys_{}, song_keys_{};
    std::uint64_t song_frame_ = 0;
    std::size_t next_event_ = 0;

    message_queue panel_keys_{};
    std::atomic<bool> asked_release_ = false;
    std::atomic<bool> asked_panic_ = false;
    std::atomic<bool> is_finished_ = false;
    std::atomic<bool> song_has_ended_ = false;
    std::array<std::atomic<float>, 2> peaks_{};
    std::atomic<int> nb_held_ = 0;
    std::atomic<std::uint64_t> frame_ = 0;
};
