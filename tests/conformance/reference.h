#pragma once
/// Sounds of one plug-in written to a file, and another's compared with them: the builds for all
/// systems play one seed's sounds alike, to the bit.

#include "conformance/trial.h"

#include <filesystem>

/// Throws a mismatch when a sound is silent or the file cannot be written.
void write_reference(trial& running, const std::filesystem::path& file);

/// Throws a mismatch when a sound is another or silent, or when the file is none of
/// write_reference's.
void compare_reference(trial& running, const std::filesystem::path& file);
