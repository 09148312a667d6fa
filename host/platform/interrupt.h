#pragma once
/// Lets the user stop the command in an orderly way.

/// From now on the first request to end sets a mark instead of ending the process. The second ends
/// it: an instrument that hangs never lets anybody read the mark.
void interrupt_catch();

[[nodiscard]] bool interrupt_requested();
