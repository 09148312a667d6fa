#pragma once
/// The control registry is the single list of the instrument's automatable parameters, read from a
/// configuration text and bound by the instrument to its values and handlers. A parameter's
/// position in the list is its index everywhere: with the host, on the panel, in a program.
///
/// The list is built in [setup] and never changes afterwards. What threads share (values, MIDI
/// assignments, the words of the update record) are single 32-bit atomics, read and written in
/// relaxed order.

#include "realtime/closure.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

constexpr std::size_t max_nb_parameters = 256;
constexpr std::size_t max_nb_configs = 256;
constexpr std::size_t program_name_size = 1024; ///< bytes with the terminating zero

struct parameter {
    std::string name;
    std::string type_name = "!"; ///< "stop" or "knob"; "!" when the text gives none, here and below
    std::string unit = "!";      ///< "bin", "db", "hz" or "%": how the value is shown
    unsigned unlearnable = 0;
    unsigned type = 0;
    unsigned manual = static_cast<unsigned>(-1); ///< -1 for controls of the whole instrument
    std::atomic<float>* value = nullptr; ///< not owned; where set, it stands before the handlers
    float default_value = 0.0f;
    closure<float()> get_parameter_value;
    std::function<std::string()> get_parameter_display{}; ///< optional
    closure<void(float)> set_parameter_value;
    std::atomic<unsigned> midi_cc = 0;
    std::atomic<unsigned> midi_channel = 0; ///< 1 to 16; 0 hears no channel
    std::string key_up = "!";               ///< computer keys that move the control
    std::string key_down = "!";
    unsigned color = 0;
};

/// A named configuration value. The registry keeps them for its users; they have no effect.
struct config {
    std::string section;
    std::string name;
    unsigned type; ///< the caller's code
    std::unique_ptr<float> value{};
};

/// How the engine reports the parameters that a MIDI control change moved, and how MIDI learn is
/// agreed between panel, plug-in and engine.
struct control_update {
    int nb_parameter_updated = 0; ///< entries of the arrays below; the audio thread's own
    std::atomic<int> last_ui_control_changed_index = -1; ///< what learn binds; -1 before any
    std::atomic<int> midi_learning = 0;                  ///< 1 while armed
    std::array<int, max_nb_parameters> parameter_index{};
    std::array<float, max_nb_parameters> parameter_value{};
};

struct control {
    std::string name;
    unsigned nb_parameters = 0;
    unsigned nb_configs = 0;
    std::vector<std::unique_ptr<parameter>> parameters{};
    parameter* p_described = nullptr; ///< the parameter that the text named last, if it had room
    std::vector<std::unique_ptr<config>> configs{};
    std::unique_ptr<control_update> p_control_update = std::make_unique<control_update>();
    /// The instrument's description, for users of the registry; the instrument fixes its own.
    unsigned nb_drawbars = 0;
    unsigned nb_bus_bars = 0;
    unsigned nb_stops = 0;
    unsigned nb_manuals = 0;
    std::vector<unsigned> manual_midi_key_start{};
    std::vector<unsigned> manual_midi_key_long{};
    std::vector<unsigned> manual_midi_channel{};
    unsigned has_bass = 0;
    unsigned bass_midi_key_start = 0;
    unsigned bass_midi_key_long = 0;
    unsigned bass_active = 0;
    unsigned bass_current_key = 0;
    unsigned max_contacts = 0;
    unsigned max_keys = 0;
    unsigned nb_oscillators = 0;
    std::array<char, program_name_size> current_program_name{"NONE"};
    unsigned nb_programs = 0; ///< in the program bank
};

[[nodiscard]] control* control_create(const char* name); ///< [setup]

void control_free(control* p_control); ///< null is allowed [setup]

/// Reads the [control] section of the named text; a text that is not found adds nothing. [setup]
void control_load_ini(control* p_control, const char* config_file_name);

/// Appends an unbound parameter, which reads as 0 and ignores writes. A 257th is ignored. [setup]
void control_add_parameter(control* p_control, const char* name);

/// Appends a record without a value. A 257th is ignored. [setup]
void control_add_config(control* p_control, const char* section, const char* name,
                        unsigned config_type);

/// Returns the index of the first parameter of exactly that name, or -1. [setup]
int control_find_parameter(const control* p_control, const char* parameter_name);

/// Read and write a parameter's value through its binding. The index is not checked. A value that
/// is not finite is not written: the old one stays. [any]
float control_get_parameter(const control* p_control, int index) noexcept NONBLOCKING;
void control_set_parameter(control* p_control, int index, float value) noexcept NONBLOCKING;

/// The handlers of a parameter that is not bound. [any]
float get_parameter_value_default() noexcept NONBLOCKING;
void set_parameter_value_default(float value) noexcept NONBLOCKING;
