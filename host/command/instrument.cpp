#include "command/instrument.h"

#include "command/arguments.h"
#include "platform/process.h"

void instrument_try(const instrument_request& request,
                    const std::function<void(plugin&)>& rehearse) {
    set_environment("TINDELWAX_SEED", std::to_string(request.seed).c_str());
    plugin_try(request.plugin_file, [&](plugin& instrument) {
        instrument_set_up(instrument, request);
        rehearse(instrument);
    });
}

void instrument_set_up(plugin& instrument, const instrument_request& request) {
    instrument.prepare(request.rate_hz, request.block_frames);
    apply_settings(instrument, request.settings);
}
