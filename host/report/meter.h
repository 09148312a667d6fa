#pragma once
/// Measures the level of samples on their way into a file.

#include <cstdint>
#include <span>
#include <string>

struct meter {
    float peak = 0;
    double sum_of_squares = 0;
    std::uint64_t nb_samples = 0;
    std::uint64_t nb_over = 0;    ///< beyond full scale
    std::uint64_t nb_invalid = 0; ///< no numbers
};

/// Takes samples in, and puts 0 where there is no finite number, which no file can hold.
void meter_take(meter& levels, std::span<float> samples);

[[nodiscard]] double meter_rms(const meter& levels);

/// A level above 0, such as "-3.2 dBFS".
[[nodiscard]] std::string level_text(double gain);

[[nodiscard]] double gain_from_decibels(double decibels);
