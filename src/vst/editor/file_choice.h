#pragma once
/// The menu's questions for a file: a bank or a program (which players call a patch), to load or to
/// save.

#include "vst/interface.h"

#include <optional>
#include <string>

class AudioEffectX;

enum class file_content { bank, patch };

/// Returns the chosen file's full path, or nothing when the user cancels. [ui]
[[nodiscard]] std::optional<std::string>
choose_file(AudioEffectX* effect, VstFileSelectCommand command, file_content content);
