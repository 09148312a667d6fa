#pragma once
/// The console takes the player's messages and hands on what an instrument can use of them: mapped
/// controllers move parameters, program changes draw registrations, pedals hold notes and swell.
/// Functions are [setup] unless tagged.

#include "console/control_map.h"
#include "console/registration.h"
#include "console/swell.h"
#include "plugin/event_list.h"

#include <bitset>

struct console_options {
    bool sustains = false;            ///< controller 64 holds notes back from their end
    bool learns = false;              ///< what is touched goes to the next controller that moves
    std::shared_ptr<swell> p_swell{}; ///< that controller 11 moves; null for none
    std::vector<control_mapping> mappings{};
    std::vector<registration> programs{}; ///< by program number; one without lines draws nothing
};

class console {
public:
    /// The instrument outlives it. Throws a failure of misuse for a name that is no parameter's.
    console(plugin& instrument, const console_options& options);

    /// Adds what the instrument gets of a message in this block. Mapped controllers and programs
    /// act at once, for all of the block. [audio]
    void take(message_view message, int frame, event_list& list) noexcept;

    /// As if the feet had left all pedals. [audio]
    void lift_pedals(int frame, event_list& list) noexcept;

    /// Draws a registration. [any]
    void draw(const std::vector<parameter_value>& values) noexcept;

    /// The player moved this parameter on the panel. [any]
    void touch(int parameter, float value) noexcept;

    /// What was learned since the last call, if anything was. [ui]
    [[nodiscard]] std::optional<control_mapping> take_learned();

private:
    bool take_controller(message_view message, int frame, event_list& list) noexcept;
    void learn(std::size_t channel, std::uint8_t controller) noexcept;
    void release_held(std::size_t channel, int frame, event_list& list) noexcept;
    void move(int parameter, float value) noexcept;

    struct foot {
        bool is_down = false;
        std::bitset<nb_midi_notes> held{}; ///< notes whose end waits
    };

    plugin& instrument_;
    std::vector<std::string> names_;
    console_options options_;
    std::vector<std::vector<parameter_value>> programs_{};
    control_table table_{};
    std::array<foot, nb_midi_channels> feet_{};
    std::atomic<int> touched_ = -1;
    std::atomic<int> learned_ = -1; // channel and controller, as below
};
