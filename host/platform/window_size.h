#pragma once
/// How large another's window is. [ui]

struct window_size {
    int width = 0; ///< pixels
    int height = 0;
};

/// By the number that the display knows the window by; 0 by 0 where it knows none.
[[nodiscard]] window_size window_size_of(void* window);
