#pragma once
/// The Korvel organ, the one instrument built on the engine: a 49-key manual with four voice stops,
/// a monophonic 12-key bass that can also sound as chords on the manual, a vibrato, a contour
/// filter, an output split and two volumes.
///
/// All of an instrument's state lives in one object that the engine owns, so that many live side by
/// side. What a parameter writes and a block reads are single atomic words, in relaxed order.

#include "korvel/held_keys.h"
#include "organ/organ.h"
#include "vibrato/vibrato.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>

/// The rates that the filters are designed for. 48000 comes last, so that its sets are in use
/// before any rate is set.
constexpr std::array s_rate{88200, 96000, 176400, 192000, 22050, 44100, 48000};

constexpr int korvel_first_note = 24; ///< MIDI, of both keybeds
constexpr int korvel_nb_manual_keys = 49;
constexpr int korvel_nb_bass_keys = 12;
static_assert(korvel_nb_manual_keys <= max_held_keys);

constexpr float korvel_vibrato_depth = 9.0f; ///< frames at the rates that have a bank

enum korvel_filter : std::size_t {
    filter_flute,
    filter_bright,
    filter_brass,
    filter_mellow,
    filter_out,
    filter_out_bass,
    filter_brickwall,
    korvel_nb_filters
};

constexpr std::size_t korvel_nb_stops = 4; ///< the first filters

enum korvel_keybed : std::size_t { keybed_manual, keybed_bass, korvel_nb_keybeds };

/// "Right" is the engine's out_r, which is the host's first output.
enum korvel_output_mode : int { output_bass_right, output_bass_left, output_mixed };

/// What the contour filter's low-pass needs, small enough for one atomic word: b1 equals b0.
struct contour_coeffs {
    float b0 = 0, a1 = 0;
};

struct korvel {
    organ* p_organ = nullptr; ///< the engine that owns this
    std::unique_ptr<vibrato> p_vibrato{};

    held_keys held{}; ///< of the manual

    // Named buffers, one block long.
    std::span<float> p_tonegenerator_buffer_organ{}; ///< the manual's oscillators, summed
    std::span<float> p_tonegenerator_buffer_bass{};  ///< the bass oscillators, summed
    std::span<float> p_post_scanner{};               ///< the manual after the vibrato
    std::span<float> p_filter{};                     ///< the sum of the stops
    std::span<float> p_filter_organ{};               ///< the manual after the contour filter
    std::span<float> p_filter_bass{};                ///< the bass after its output filter
    std::span<float> p_swell_buffer{};

    // Parameters, 0 to 1; switches are on at 0.5 and above.
    std::array<std::atomic<float>, korvel_nb_stops> stops{}; ///< Flute, Bright, Brass, Mellow
    std::atomic<float> volume = 0;
    std::atomic<float> bass_volume = 0;
    std::atomic<float> bass_chords_on = 0;
    std::atomic<float> vibrato_on = 0;
    std::atomic<float> contour_filter_ratio = 0;
    std::atomic<float> split_output = 0;

    std::atomic<int> sound_output_mode = 0;                           ///< korvel_output_mode
    std::array<std::atomic<contour_coeffs>, s_rate.size()> contour{}; ///< by position in s_rate
    std::size_t selected_rate = s_rate.size() - 1; ///< position in s_rate of the filters' sets

    bool bass_has_segment = false; ///< part of this block's bass lies in its buffer already
    unsigned resting_stops = 0;    ///< that were on in the last block rendered
};

static_assert(std::atomic<contour_coeffs>::is_always_lock_free);

/// Returns the engine of a new instrument, every parameter at its default, without rate or block
/// size; for `seed` see organ_create. A configuration text with gaps leaves out what it does not
/// describe. Free with korvel_free, and its registry, p_control, with control_free after it.
/// [setup]
[[nodiscard]] organ* korvel_create(const char* name, std::optional<std::uint32_t> seed = {});

void korvel_free(organ* p_organ); ///< null is allowed [setup]
