#pragma once
/// Figures taken from recorded sound.

#include <complex>
#include <cstddef>
#include <span>

using signal_span = std::span<const float>;

/// Below what any difference of floats can be: two recordings that are equal.
constexpr double equal_db = -1000;

[[nodiscard]] double to_db(double ratio) noexcept; ///< equal_db for 0

[[nodiscard]] double peak(signal_span signal) noexcept;

/// The index of the first sample that is not 0; the length where all are.
[[nodiscard]] std::size_t first_sound(signal_span signal) noexcept;

[[nodiscard]] bool is_finite(signal_span signal) noexcept;

/// Largest difference, in dB of the peak of `wanted`; the spans are equally long.
[[nodiscard]] double difference_db(signal_span got, signal_span wanted) noexcept;

/// The index of the largest difference.
[[nodiscard]] std::size_t worst_index(signal_span got, signal_span wanted) noexcept;

/// Amplitude and phase (at the first sample) of a partial, through a Hann window.
[[nodiscard]] std::complex<double> partial(signal_span signal, double rate, double hz) noexcept;

/// The frequency of the partial near `hz`: from how fast its phase turns against it, first over
/// a short time, which is unambiguous, then over half the signal, which is exact.
[[nodiscard]] double frequency(signal_span signal, double rate, double hz) noexcept;

[[nodiscard]] double cents(double hz, double reference_hz) noexcept;
