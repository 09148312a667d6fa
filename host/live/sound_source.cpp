#include "live/sound_source.h"

namespace {

constexpr struct {
    const char* name;
    std::unique_ptr<sound_system> (*open)(live_instrument&, const sound_wishes&);
} ways[] = {{"jack", jack_system_open}, {"alsa", alsa_system_open}};

} // namespace

std::unique_ptr<sound_system> sound_source::open() {
    for (const auto& way : ways) {
        if (!wishes_.via.empty() && wishes_.via != way.name)
            continue;
        if (auto opened = way.open(instrument_, wishes_)) {
            wishes_.via = way.name;
            return opened;
        }
    }
    return nullptr;
}

std::string sound_source::absence() const {
    if (wishes_.via == "jack")
        return "no JACK server is there; start one (jackd or PipeWire)";
    const std::string device =
        "sound device"
        + (wishes_.device.empty() ? std::string{} : " called \"" + wishes_.device + "\"");
    if (wishes_.via == "alsa")
        return "no " + device + " is free; see tindelwax play --list";
    return "neither a JACK server nor a " + device
           + " is there; start one (jackd or PipeWire), plug a device in, or see tindelwax play "
             "--list";
}
