#pragma once
/// The command lines of the desktops' file dialogs, which print the chosen path. [any]

#include "platform/file_dialog/file_dialog.h"

#include <string>
#include <vector>

using command_line = std::vector<std::string>;

/// The dialogs to try, the first that is installed to be used.
[[nodiscard]] std::vector<command_line> file_dialog_commands(const file_request& request);
