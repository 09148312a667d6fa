#pragma once
/// A window that an editor opens in, and a picture of what it shows. It needs a display.

#include <cstdint>
#include <memory>
#include <vector>

struct picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels{}; ///< red, green and blue of each, in rows from the top

    bool operator==(const picture&) const = default;
};

class picture_window {
public:
    /// Shows a window without decoration, in the screen's upper left corner.
    picture_window(int width, int height);
    ~picture_window();
    picture_window(const picture_window&) = delete;
    picture_window& operator=(const picture_window&) = delete;

    /// The window as editors take it; null if the screen shows none.
    [[nodiscard]] void* handle() const;

    void resize(int width, int height);

    /// What the window shows, with all that lies in it. Without pixels if the window reaches beyond
    /// the screen or the screen's pixels hold no plain red, green and blue.
    [[nodiscard]] picture take() const;

private:
    struct connection;
    std::unique_ptr<connection> p_connection_;
    int width_;
    int height_;
};
