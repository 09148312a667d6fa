#include "console/swell.h"

#include "plugin/parameters.h"

#include <algorithm>

swell::swell(plugin& instrument)
    : instrument_{instrument},
      parameter_{find_parameter(parameter_names(instrument), "Volume")},
      volume_{instrument.parameter(parameter_)},
      written_{volume_.load()} {}

void swell::set_pedal(float position) noexcept {
    follow();
    pedal_ = position;
    write();
}

void swell::set_volume(float volume) noexcept {
    volume_ = volume;
    write();
}

void swell::touch(float volume) noexcept {
    written_ = volume;
    if (pedal_ > 0)
        volume_ = std::min(1.0f, volume / pedal_);
}

void swell::follow() noexcept {
    const float now = instrument_.parameter(parameter_);
    if (now != written_)
        set_volume(now);
}

void swell::write() noexcept {
    instrument_.set_parameter(parameter_, volume_ * pedal_);
    written_ = instrument_.parameter(parameter_); // as the instrument keeps it
}
