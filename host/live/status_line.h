#pragma once
/// What the player sees of the sound at a glance. All is [ui].

#include "live/sound_system.h"

#include <cstdio>

/// One line of at most 79 columns, without its end.
[[nodiscard]] std::string status_text(const sound_status& status, const live_levels& levels,
                                      bool has_clipped);

/// On a terminal a line that is kept up to date, with news above it; elsewhere the news alone.
class status_line {
public:
    explicit status_line(std::FILE* p_output); ///< null for nothing at all
    ~status_line();                            ///< leaves the terminal's next line free
    status_line(const status_line&) = delete;
    status_line& operator=(const status_line&) = delete;

    void show(const sound_status& status, const live_levels& levels);
    void show_absence(); ///< of sound
    void tell(const std::string& news);

private:
    void draw(const std::string& line);

    std::FILE* p_output_;
    bool is_live_;
    std::string line_{};
    std::array<float, 2> peaks_{}; // that fall slowly
    bool has_clipped_ = false;
};
