#pragma once
/// The song that the user named.

#include "midi_file/midi_file.h"

#include <string>

/// How messages call the song: by its file's name, or "standard input" for "-".
[[nodiscard]] std::string song_name(const std::string& argument);

/// Reads a file, or standard input for "-", and prints warnings on standard error. Throws a failure
/// of misuse that names the song if there is nothing to play.
[[nodiscard]] midi_song song_read(const std::string& argument);
