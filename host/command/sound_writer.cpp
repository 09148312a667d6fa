#include "command/sound_writer.h"

sound_writer::sound_writer(audio_file& file, float gain, std::optional<float> wished_peak)
    : file_{file}, gain_{gain}, wished_peak_{wished_peak} {
    if (wished_peak)
        kept_.emplace();
}

void sound_writer::take(std::span<const float> samples) {
    if (!kept_)
        return write(samples);
    piece_.assign(samples.begin(), samples.end());
    meter_take(kept_levels_, piece_);
    kept_->write(std::span<const float>{piece_});
}

void sound_writer::finish() {
    if (kept_) {
        gain_ = kept_levels_.peak > 0 ? *wished_peak_ / kept_levels_.peak : 1;
        kept_->replay<float>([this](std::span<const float> samples) { write(samples); });
        levels_.nb_invalid += kept_levels_.nb_invalid;
    }
    file_.finish();
}

void sound_writer::write(std::span<const float> samples) {
    piece_.assign(samples.begin(), samples.end());
    for (float& sample : piece_)
        sample *= gain_;
    meter_take(levels_, piece_);
    file_.write(piece_);
}
