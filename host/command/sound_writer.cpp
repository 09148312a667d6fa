#include "command/sound_writer.h"

#include <algorithm>

sound_writer::sound_writer(audio_file& file, float gain, std::optional<float> wished_peak)
    : file_{file}, gain_{gain}, wished_peak_{wished_peak} {}

void sound_writer::take(std::span<const float> samples) {
    if (wished_peak_)
        kept_.insert(kept_.end(), samples.begin(), samples.end());
    else
        write(samples);
}

void sound_writer::finish() {
    if (wished_peak_) {
        meter before;
        meter_take(before, kept_);
        gain_ = before.peak > 0 ? *wished_peak_ / before.peak : 1;
        constexpr std::size_t piece_length = 1 << 14;
        for (std::span<const float> rest{kept_}; !rest.empty();) {
            const auto piece = rest.first(std::min(piece_length, rest.size()));
            write(piece);
            rest = rest.subspan(piece.size());
        }
        levels_.nb_invalid += before.nb_invalid;
    }
    file_.finish();
}

void sound_writer::write(std::span<const float> samples) {
    amplified_.assign(samples.begin(), samples.end());
    for (float& sample : amplified_)
        sample *= gain_;
    meter_take(levels_, amplified_);
    file_.write(amplified_);
}
