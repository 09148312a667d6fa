#pragma once
/// What WebAssembly exports: an instrument with the memory for a block and for a text, through
/// which JavaScript hears and tells. Texts end with a zero byte and stand until the engine's next.
///
/// There is one thread: the audio thread does everything, [setup] between blocks.

#include "instrument/instrument.h"
#include "realtime/nonblocking.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

constexpr std::size_t nb_midi_notes = 128;

struct engine {
    instrument played;
    std::array<std::vector<float>, 2> outputs; ///< right, left; as long as the longest block
    std::string text{};
    std::vector<std::vector<unsigned char>> active_keys{}; ///< of each keybed, last followed
    std::array<bool, nb_midi_notes> sounding{};            ///< when somebody last asked
};

extern "C" {

/// Blocks have at most `block` frames. It goes with the memory that it is in. [setup]
engine* engine_create(std::uint32_t seed, float sampling_rate, std::uint32_t block);

/// A parameter's index must be below their number. [any]
std::uint32_t engine_nb_parameters(engine* p_engine);
float engine_get_parameter(engine* p_engine, int index) noexcept NONBLOCKING;
void engine_set_parameter(engine* p_engine, int index, float value) noexcept NONBLOCKING;

bool engine_is_switch(engine* p_engine, int index) noexcept NONBLOCKING;

/// The controller that moves a parameter, and its channel, 1 to 16, or 0 for none.
std::uint32_t engine_controller(engine* p_engine, int index) noexcept NONBLOCKING;
std::uint32_t engine_channel(engine* p_engine, int index) noexcept NONBLOCKING;
void engine_bind(engine* p_engine, int index, std::uint32_t controller,
                 std::uint32_t channel) noexcept NONBLOCKING;

/// The next controller that comes is the parameter's, or that of one which is set before; -1 ends
/// that. Returns, asked, the index of the parameter that learns, or -1.
void engine_learn(engine* p_engine, int index) noexcept NONBLOCKING;
int engine_learning(engine* p_engine) noexcept NONBLOCKING;

const char* engine_parameter_name(engine* p_engine, int index);              ///< [setup]
const char* engine_parameter_text(engine* p_engine, int index, float value); ///< [setup]

/// Takes a message for the coming block. Returns whether it moved a parameter. [audio]
bool engine_receive(engine* p_engine, int status, int first, int second,
                    int frame) noexcept NONBLOCKING;

/// Plays a block into the outputs, 0 right and 1 left, which stay where they are. [audio]
void engine_process(engine* p_engine, std::uint32_t nb_frames) noexcept NONBLOCKING;
const float* engine_output(engine* p_engine, std::uint32_t channel); ///< [setup]

/// Returns whether other keys sound than the last time, releases included. [audio]
bool engine_follow_keys(engine* p_engine) noexcept NONBLOCKING;

/// Returns for each of nb_midi_notes whether a key of it sounds. [setup]
const bool* engine_notes(engine* p_engine);

bool engine_is_resting(engine* p_engine) noexcept NONBLOCKING; ///< [audio]
void engine_panic(engine* p_engine) noexcept NONBLOCKING;      ///< [any]

/// Makes room for a text of that many bytes, which engine_load or engine_register then reads.
/// [setup]
char* engine_text_room(engine* p_engine, std::uint32_t nb_bytes);

/// The instrument's state as text, and back; where another seed comes with it, a new instrument
/// plays. Returns whether the text could be taken over; else nothing has changed. [setup]
const char* engine_save(engine* p_engine);
bool engine_load(engine* p_engine);

/// Sets the parameters that a registration names. Returns whether the text is one. [setup]
bool engine_register(engine* p_engine);

/// The registrations that the instrument brings along, in the order of their keys. [any]
std::uint32_t engine_nb_registrations();
const char* engine_registration_key(std::uint32_t index);
const char* engine_registration_text(std::uint32_t index);

} // extern "C"
