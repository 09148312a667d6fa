#include "render/song_clock.h"

void song_clock::tell(plugin& instrument, std::uint64_t frame) noexcept {
    const double seconds = static_cast<double>(frame) / rate_hz_;
    if (seconds < tempi_[current_].seconds)
        current_ = 0; // the song jumped
    while (current_ + 1 < tempi_.size() && tempi_[current_ + 1].seconds <= seconds)
        ++current_;
    const midi_tempo& tempo = tempi_[current_];
    const double quarters_per_second = 1e6 / tempo.us_per_quarter;
    VstTimeInfo& time = instrument.time();
    time.samplePos = static_cast<double>(frame);
    time.ppqPos = tempo.quarters + (seconds - tempo.seconds) * quarters_per_second;
    time.tempo = 60 * quarters_per_second;
    time.flags = kVstTransportPlaying | kVstPpqPosValid | kVstTempoValid
                 | (frame == 0 ? kVstTransportChanged : 0);
}
