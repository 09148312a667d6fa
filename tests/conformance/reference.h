#pragma once
/// Sounds of one plug-in written to a file, and another's compared with them: the builds for
/// different systems differ by no more than their maths libraries.

#include "conformance/trial.h"

#include <filesystem>

/// Throws a mismatch when the file cannot be written.
void write_reference(trial& running, const std::filesystem::path& file);

/// Says for each sound whether it is the same to the bit or how far off. Throws a mismatch when
/// one is more than -75 dB of its peak off, or the file is none of write_reference's.
void compare_reference(trial& running, const std::filesystem::path& file);
