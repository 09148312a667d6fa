#pragma once
/// A window on the player's desktop that an editor opens in, and that takes the keyboard. It needs
/// a display. All is [ui].

#include <memory>
#include <string>
#include <vector>

/// A key pressed or let go; its number tells its place, as Linux counts keys, whatever is printed
/// on it.
struct window_key {
    int code;
    bool is_pressed;
};

struct window_events {
    bool is_closed = false; ///< by the user, or with the display
    bool lost_keys = false; ///< what is held is not told to be let go
    std::vector<window_key> keys{};
};

class player_window {
public:
    /// Shows a window of a fixed size, decorated, with a title and the command's name for its
    /// class.
    player_window(int width, int height, const std::string& title);
    ~player_window();
    player_window(const player_window&) = delete;
    player_window& operator=(const player_window&) = delete;

    /// The window as editors take it; null where the display shows none.
    [[nodiscard]] void* handle() const;

    void resize(int width, int height);

    /// Since the last call; waits for nothing. A key that repeats is told once; one that is let go
    /// may be told a call later, as it might be about to repeat.
    [[nodiscard]] window_events take_events();

private:
    struct state;
    std::unique_ptr<state> p_state_;
};
