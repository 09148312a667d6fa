#pragma once
/// The instrument's filters as their design formulas have them, in double precision.

/// The magnitude of a stop's filter, or of the contour's two stages, at a frequency.
[[nodiscard]] double flute_gain(double hz, double rate);
[[nodiscard]] double bright_gain(double hz, double rate);
[[nodiscard]] double brass_gain(double hz, double rate);
[[nodiscard]] double mellow_gain(double hz, double rate);
[[nodiscard]] double contour_gain(double contour, double hz, double rate);
