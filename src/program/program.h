#pragma once
/// A program is a snapshot of the control registry under a name: for every parameter its value and
/// its MIDI assignment. A bank is a fixed list of programs. Files that cannot be opened, and
/// records that do not fit the program, leave everything as it was, silently. Functions are [ui].
///
/// The program record, also the whole content of a program file; little-endian, nothing aligned:
///   name and a zero byte; n (32 bits); n controllers, n channels (32 bits, signed), n values
///   (float)

#include "control/control.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

struct program {
    std::string name;
    unsigned nb_parameters;
    std::vector<int> midi_cc; ///< entry j belongs to the registry's parameter j, here and below
    std::vector<int> midi_channel; ///< 1 to 16, 0 for none
    std::vector<float> parameter_value;
};

struct program_bank {
    std::string name;
    unsigned nb_programs;
    std::vector<std::unique_ptr<program>> programs{};
};

[[nodiscard]] program* program_create(const char* name, unsigned nb_parameters);
void program_free(program* p_prog); ///< null is allowed

/// Stores the registry's values and MIDI assignments; parameters beyond the program's are left out.
void program_from_control(program* p_prog, const control* p_control);

std::size_t program_get_mem_size(const program* p_prog); ///< bytes of the program's record

/// Stores a new record, for the caller to delete[], through `data` and its size through
/// `byte_size`.
void program_to_memory(const program* p_prog, char** data, std::size_t* byte_size);

/// Reads a record of `byte_size` bytes. One with another number of parameters than the program's,
/// without its name's end or cut short is refused.
void program_from_memory(program* p_prog, const char* data, std::size_t byte_size);

void program_to_file(const program* p_prog, const char* filename);

/// Reads as many bytes as the program's own record has: files of programs of one bank fit.
void program_from_file(program* p_prog, const char* filename);

/// Returns a bank of programs "INIT", each a snapshot of the registry, and tells the registry their
/// number.
[[nodiscard]] program_bank* program_bank_create(const char* name, unsigned nb_programs,
                                                control* p_control);
void program_bank_free(program_bank* p_bank); ///< null is allowed

/// There is no format of bank files: both do nothing.
void bank_to_file(const program_bank* p_bank, const char* filename);
void bank_from_file(program_bank* p_bank, const char* filename);
