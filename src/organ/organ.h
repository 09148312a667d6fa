#pragma once
/// The engine is the generic frame of an organ: it owns keybeds, tone generators, harp matrices,
/// filters, named buffers and a DSP stack, routes MIDI to them and drives one block after another.
/// It knows no instrument: one creates it with the counts that it needs, fills its arrays and
/// installs its callbacks.
///
/// For each block the host's audio thread sets the block's length where it changes, hands in the
/// block's messages in frame order, and calls organ_process. Rate and length changes come between
/// blocks.

#include "buffers/buffers.h"
#include "control/control.h"
#include "dsp_stack/dsp_stack.h"
#include "filter/filter.h"
#include "harpmatrix/harpmatrix.h"
#include "keybed/keybed.h"
#include "random15/random15.h"
#include "realtime/closure.h"
#include "tonegenerator/tonegenerator.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct organ {
    std::string name;
    int sampling_rate = 0;        ///< Hz; 0 until set
    int block_size = 0;           ///< frames
    int max_block_size = 0;       ///< that was set; blocks may be shorter
    random15 random{};            ///< what the instrument's tolerances are drawn from
    control* p_control = nullptr; ///< not owned
    std::unique_ptr<buffers> p_buffers{};
    int nb_harpmatrixes;
    std::vector<std::unique_ptr<harpmatrix>> p_harpmatrixes;
    int nb_tonegenerators;
    std::vector<std::unique_ptr<tonegenerator>> p_tonegenerators;
    int nb_keybeds;
    /// MIDI and blocks go through them in this order.
    std::vector<std::unique_ptr<keybed>> p_keybeds;
    int nb_filters;
    std::vector<std::unique_ptr<filter>> p_filters;
    std::vector<float*> p_filters_in; ///< slots for an instrument's own routing, here and below
    std::vector<float*> p_filters_out;
    std::vector<int> p_filters_add;
    int* p_filters_order = nullptr;
    std::function<void(organ*, int mode)> set_output_mode_callback{};
    /// Renders a block; without it the outputs are silent.
    closure<void(organ*, std::span<float> out_r, std::span<float> out_l)> process_callback{};
    /// Whether nothing sounds or rings on, as the instrument has found. A note or a rate ends it.
    bool is_resting = false;
    /// Asked at rest: goes on by so many frames of silence, or returns false, and they are
    /// rendered.
    closure<bool(unsigned nframes)> rest_callback{};
    closure<void()> silence_callback{}; ///< empties what the instrument has beside its filters
    std::uint32_t rested_frames = 0;    ///< that the keybeds' counts do not have yet
    std::function<void(int block_size)> set_block_size_callback{};
    std::function<void(int sampling_rate)> set_sampling_rate_callback{};
    std::unique_ptr<dsp_stack> p_dsp_stack{};
    std::shared_ptr<void> p_instrument{}; ///< what the callbacks work on; goes with the engine
};

/// Returns the number of 32 bits in the environment variable TINDELWAX_SEED, if there is one.
/// [setup]
std::optional<std::uint32_t> organ_asked_seed();

/// Returns an engine whose arrays wait to be filled. Its random numbers are seeded with `seed`, or
/// else with the seed that is asked for, or else with the time in seconds. On a processor without
/// SSE the process ends with status 1 and a message. [setup]
[[nodiscard]] organ* organ_create(const char* name, int nb_keybeds, int nb_tonegenerators,
                                  int nb_harpmatrixes, int nb_filters,
                                  std::optional<std::uint32_t> seed = {});

/// Frees the engine and everything in its arrays, but not the registry; null is allowed. [setup]
void organ_free(organ* p_organ);

/// Passes the length of blocks, at most, on to the DSP stack, the keybeds, the tone generators, the
/// named buffers and the instrument, in this order. [setup]
void organ_set_block_size(organ* p_organ, int block_size);

/// Announces a shorter block, or one as long as was set, to all that works on whole blocks. [audio]
void organ_use_block_size(organ* p_organ, int block_size) noexcept NONBLOCKING;

/// Passes a rate on likewise, the buffers left out; rates below 1 are ignored. [setup]
void organ_set_sampling_rate(organ* p_organ, int sampling_rate);

/// Renders a block into both outputs, which have one length; the engine follows that length, and
/// does nothing for 0 frames. [audio] up to the length that was set; a longer block allocates.
void organ_process(organ* p_organ, std::span<float> out_r,
                   std::span<float> out_l) noexcept NONBLOCKING;

/// Routes a 3-byte channel message stamped with its frame in the coming block. A control change
/// leaves the parameters that it moves in the registry's update record, for the caller to apply;
/// messages of other kinds leave the record alone. [audio]
void organ_receive_midi_event(organ* p_organ, const char* midi_data,
                              int frame_index) noexcept NONBLOCKING;

/// Silences every key at once. [audio]
void organ_panic(organ* p_organ) noexcept NONBLOCKING;

/// The same, and nothing rings on. [audio]
void organ_silence(organ* p_organ) noexcept NONBLOCKING;

void organ_set_output_mode(organ* p_organ, int mode); ///< [any], as far as the callback is

/// Gives every parameter its default through its binding. [setup]
void organ_set_default_values(organ* p_organ);

void organ_add_filters_to_dsp_stack(organ* p_organ); ///< in array order [setup]
