#pragma once
/// What the player sees of the sound at a glance. All is [ui].

#include "live/sound_system.h"

#include <chrono>
#include <cstdio>

/// One line of at most so many columns, without its end. Where they are few, what matters least is
/// left out; the device's name gets the room that is left.
[[nodiscard]] std::string status_text(const sound_status& status, const live_levels& levels,
                                      bool has_clipped, std::size_t nb_columns);

/// On a terminal a line that is kept up to date, with news above it; elsewhere the news alone, and
/// every few seconds the count of underruns if it grew.
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
    void count(long nb_underruns);
    void draw(const std::string& line);

    std::FILE* p_output_;
    bool is_live_;
    std::string line_{};
    std::array<float, 2> peaks_{}; // that fall slowly
    bool has_clipped_ = false;
    long nb_counted_ = 0; // underruns
    std::chrono::steady_clock::time_point last_count_{};
};
