#pragma once
/// A failure ends the command: one sentence for the user and the exit status. The command's
/// modules throw it, so that everything opened on the way is closed and removed by its owner.

#include <stdexcept>
#include <string>

enum exit_status : int {
    exit_success = 0,
    exit_failed = 1, ///< the machine, the plug-in or the disk did not do what was asked
    exit_misused = 2 ///< wrong options, or a file that is no song or no plug-in
};

struct failure : std::runtime_error {
    /// Names in the sentence may hold anything; what() has no control characters.
    failure(exit_status exit, const std::string& sentence);

    exit_status status;
};

/// Tells the user on standard error, in one sentence, what does not end the command.
void warn(const std::string& sentence);
