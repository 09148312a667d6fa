#pragma once
/// What a project keeps of an instrument, as a short text:
///
///   tindelwax 1            the kind of text and its version
///   seed 2309              what the instrument's tolerances are drawn from
///   Volume 0.25 7 1        a parameter's name, value, controller and channel; and so on
///   end
///
/// All is [setup].

#include "control/control.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct saved_parameter {
    std::string name;
    float value;
    unsigned midi_cc;
    unsigned midi_channel; ///< 1 to 16, or 0 for none
};

struct saved_state {
    std::uint32_t seed;
    std::vector<saved_parameter> parameters;
};

/// Returns the registry's values and assignments.
[[nodiscard]] saved_state saved_state_take(const control& registry, std::uint32_t seed);

/// Puts a registry where the state has it, values beyond their range at its end. What only one of
/// the two knows is left alone.
void saved_state_put(const saved_state& state, control& registry);

[[nodiscard]] std::string saved_state_write(const saved_state& state);

/// Returns nothing for a text of another version, one that is cut short, or one with a line that
/// says nothing or a value that is not finite.
[[nodiscard]] std::optional<saved_state> saved_state_read(std::string_view text);
