#pragma once
/// Brings rendered sound to its level and into its file.

#include "audio_file/audio_file.h"
#include "report/meter.h"

#include <optional>
#include <vector>

class sound_writer {
public:
    /// Amplifies by `gain`, or if `wished_peak` is there, so much that this is the peak; then the
    /// sound is kept in memory until finish.
    sound_writer(audio_file& file, float gain, std::optional<float> wished_peak);

    void take(std::span<const float> samples);
    void finish();

    /// Of what is in the file.
    [[nodiscard]] const meter& levels() const { return levels_; }

private:
    void write(std::span<const float> samples);

    audio_file& file_;
    float gain_;
    std::optional<float> wished_peak_;
    meter levels_{};
    std::vector<float> kept_{};
    std::vector<float> amplified_{};
};
