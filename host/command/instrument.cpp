#include "command/instrument.h"

#include "platform/process.h"
#include "plugin/parameters.h"

namespace {

void apply_settings(plugin& instrument, const instrument_request& request) {
    if (request.registration.empty() && request.settings.empty())
        return;
    const std::vector<std::string> names = parameter_names(instrument);
    if (!request.registration.empty()) {
        const registration chosen = registration_find(request.registration);
        for (const parameter_value& value : registration_resolve(chosen, names))
            instrument.set_parameter(value.index, value.value);
    }
    for (const std::string& text : request.settings) {
        const parameter_setting setting = parse_setting(text);
        instrument.set_parameter(find_parameter(names, setting.name), setting.value);
    }
}

} // namespace

void instrument_try(const instrument_request& request,
                    const std::function<void(plugin&)>& rehearse) {
    set_environment("TINDELWAX_SEED", std::to_string(request.seed).c_str());
    plugin_try(request.plugin_file, [&](plugin& instrument) {
        instrument_set_up(instrument, request);
        rehearse(instrument);
    });
}

console_options instrument_console(const instrument_request& request, plugin& instrument) {
    console_options options{.sustains = request.sustains};
    if (request.expresses)
        options.p_swell = std::make_shared<swell>(instrument);
    for (const std::string& text : request.mappings)
        options.mappings.push_back(control_mapping_parse(text));
    return options;
}

void instrument_set_up(plugin& instrument, const instrument_request& request) {
    instrument.prepare(request.rate_hz, request.block_frames);
    apply_settings(instrument, request);
}
