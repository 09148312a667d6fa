#pragma once
/// Sounds of one plug-in written to a file, and another's compared with them: the builds for
/// different systems differ by no more than their maths libraries.

#include "conformance/trial.h"

#include <filesystem>

/// What different systems' maths libraries may make of one sound, of its peak.
constexpr double between_systems_db = -75;

/// Throws a mismatch when a sound is silent or the file cannot be written.
void write_reference(trial& running, const std::filesystem::path& file);

/// Says for each sound whether it is the same to the bit or how far off. Throws a mismatch when
/// one is silent or more than `bound_db` of its peak off, equal_db asking for the same bits, or
/// when the file is none of write_reference's.
void compare_reference(trial& running, const std::filesystem::path& file,
                       double bound_db = between_systems_db);
