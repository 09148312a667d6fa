#pragma once
/// Lets the user stop the command in an orderly way, so that it leaves no temporary file.

/// From now on a request to end sets a mark instead of ending the process.
void interrupt_catch();

[[nodiscard]] bool interrupt_requested();
