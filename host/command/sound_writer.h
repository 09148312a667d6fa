#pragma once
/// Brings rendered sound to its level and into its file.

#include "audio_file/audio_file.h"
#include "report/meter.h"

#include <optional>
#include <vector>

class sound_writer {
public:
    /// Amplifies by `gain`, or if `wished_peak` is there, so much that this is the peak. Then the
    /// sound waits in a scratch file until finish: to render twice would take less room, but most
    /// instruments sound another way each time.
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
    std::optional<scratch_file> kept_{};
    meter kept_levels_{};
    std::vector<float> piece_{};
};
