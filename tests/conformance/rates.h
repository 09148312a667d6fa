#pragma once
/// The rates at which the instrument sounds as designed.

struct rate_case {
    int rate;      ///< Hz
    int base_rate; ///< whose tables sound
};

inline constexpr rate_case supported_rates[]{{22050, 22050}, {44100, 44100}, {48000, 48000},
                                             {88200, 44100}, {96000, 48000}, {176400, 44100},
                                             {192000, 48000}};
