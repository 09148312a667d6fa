#pragma once
/// Lets the user stop the command at any moment, whatever it waits for: a plug-in that hangs, a
/// song that does not come, a reader of its output.

#include <atomic>

/// From now on the first request to end (SIGINT or SIGTERM) removes the file that was left to it
/// and ends the process by that signal, for a shell to see. It needs nothing of the rest of the
/// process.
void interrupt_catch();

/// From now on a request only sets what this returns; one that comes 2 seconds later ends the
/// process.
[[nodiscard]] const std::atomic<bool>& interrupt_defer();

/// The file that a request to end removes, instead of an earlier one; null for none. The name must
/// live until the next call.
void interrupt_removes(const char* p_file);

/// While one lives, requests wait.
class interrupt_pause {
public:
    interrupt_pause();
    ~interrupt_pause();
    interrupt_pause(const interrupt_pause&) = delete;
    interrupt_pause& operator=(const interrupt_pause&) = delete;
};
