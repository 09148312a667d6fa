#pragma once
/// A host's window that an editor opens in, a picture of what it shows, and the hands of the user
/// before it. It needs a display.

#include <cstdint>
#include <memory>
#include <vector>

struct picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels{}; ///< red, green and blue of each, in rows from the top

    bool operator==(const picture&) const = default;
};

/// In pixels from the upper left corner, of the screen or of the window.
struct window_place {
    int x = 0;
    int y = 0;
};

class editor_window {
public:
    enum class key { shift, control };

    /// Shows a window without decoration.
    editor_window(int width, int height, window_place corner_on_screen = {},
                  bool is_transparent = false);
    ~editor_window(); ///< lets go of the mouse, which all windows share
    editor_window(const editor_window&) = delete;
    editor_window& operator=(const editor_window&) = delete;

    /// The window as editors take it; null if the screen shows none.
    [[nodiscard]] void* handle() const;

    void resize(int width, int height);
    void show(bool shown);
    void show_content(bool shown); ///< the windows in it
    void destroy();                ///< as the system does, whatever is in it

    /// What the window shows, with all that lies in it. Without pixels if the window reaches beyond
    /// the screen or the screen's pixels hold no plain red, green and blue.
    [[nodiscard]] picture take() const;

    /// Windows in it, and what the system still knows of those that were.
    [[nodiscard]] long nb_left() const;

    /// Keys come to this window from now on, unless an editor takes them.
    void take_keys();
    [[nodiscard]] bool gets_keys(); ///< whether one that is pressed now comes

    // What the user does is on the editor's way, or in the system's hands, until the host lets
    // windows handle their messages.

    void move(window_place in_window);
    void press();
    void release();
    void click_twice(); ///< fast enough for a double click
    void turn_wheel(int notches);
    void hold(key held, bool down);

    /// As another window takes it, in the middle of a drag.
    void take_mouse_away();
    void give_mouse_back();

    void handle_messages();

private:
    struct state;
    std::unique_ptr<state> p_state_;
};
