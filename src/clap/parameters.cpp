#include "clap/parameters.h"

#include "clap/events.h"
#include "clap/lookup.h"
#include "clap/plugin.h"
#include "clap/text.h"
#include "player/parameter_text.h"

#include <cmath>
#include <string>

namespace {

player& shown_player(const clap_plugin* plugin) {
    return clap_instrument_of(plugin).played.shown();
}

const parameter* find(const player* p_player, clap_id id) noexcept NONBLOCKING {
    return player_find_parameter(p_player, static_cast<int>(id));
}

/// The event's value, if it has an effect.
std::optional<float> value_of(const player* p_player,
                              const clap_event_param_value& event) noexcept NONBLOCKING {
    const parameter* const p_param = find(p_player, event.param_id);
    if (!p_param || !std::isfinite(event.value))
        return std::nullopt;
    return parameter_nearest(*p_param, event.value);
}

std::uint32_t count(const clap_plugin* plugin) {
    return shown_player(plugin).p_control->nb_parameters;
}

bool get_info(const clap_plugin* plugin, std::uint32_t param_index, clap_param_info* param_info) {
    const parameter* const p_param = find(&shown_player(plugin), param_index);
    if (!p_param)
        return false;
    *param_info = {.id = param_index,
                   .flags = CLAP_PARAM_IS_AUTOMATABLE,
                   .cookie = nullptr,
                   .name{},
                   .module{},
                   .min_value = 0,
                   .max_value = 1,
                   .default_value =
                       parameter_nearest(*p_param, static_cast<double>(p_param->default_value))};
    if (parameter_is_switch(*p_param))
        param_info->flags |= CLAP_PARAM_IS_STEPPED | CLAP_PARAM_IS_ENUM;
    clap_write_text(param_info->name, p_param->name);
    return true;
}

bool get_value(const clap_plugin* plugin, clap_id param_id, double* out_value) {
    const player* const p_player = &shown_player(plugin);
    if (!find(p_player, param_id) || !out_value)
        return false;
    *out_value = clap_shown_value(p_player, param_id);
    return true;
}

bool value_to_text(const clap_plugin* plugin, clap_id param_id, double value, char* out_buffer,
                   std::uint32_t out_buffer_capacity) {
    const parameter* const p_param = find(&shown_player(plugin), param_id);
    if (!p_param || !std::isfinite(value) || !out_buffer || out_buffer_capacity == 0)
        return false;
    clap_write_text(out_buffer, out_buffer_capacity,
                    parameter_text(*p_param, parameter_nearest(*p_param, value)));
    return true;
}

bool text_to_value(const clap_plugin* plugin, clap_id param_id, const char* param_value_text,
                   double* out_value) {
    const parameter* const p_param = find(&shown_player(plugin), param_id);
    if (!p_param || !param_value_text || !out_value)
        return false;
    const auto value = parameter_value(*p_param, param_value_text);
    if (value)
        *out_value = parameter_nearest(*p_param, *value);
    return value.has_value();
}

/// [audio], or [ui] while there is no audio thread
void flush(const clap_plugin* plugin, const clap_input_events* in,
           const clap_output_events* out) noexcept NONBLOCKING {
    clap_send_edits(clap_instrument_of(plugin), out);
    player& playing = clap_instrument_of(plugin).played.playing();
    for (std::uint32_t i = 0; i < clap_nb_events(in); ++i)
        if (const auto* const event =
                clap_event_as<clap_event_param_value>(in->get(in, i), CLAP_EVENT_PARAM_VALUE))
            clap_set_parameter(&playing, *event);
}

} // namespace

const clap_plugin_params clap_parameters{count,         get_info,      get_value,
                                         value_to_text, text_to_value, flush};

double clap_shown_value(const player* p_player, clap_id id) noexcept {
    const float value = player_get_parameter(p_player, static_cast<int>(id));
    return parameter_nearest(*find(p_player, id), value);
}

bool clap_parameter_moves(const player* p_player, const clap_event_param_value& event) noexcept {
    const auto value = value_of(p_player, event);
    return value && *value != clap_shown_value(p_player, event.param_id);
}

void clap_set_parameter(player* p_player, const clap_event_param_value& event) noexcept {
    if (const auto value = value_of(p_player, event))
        player_set_parameter(p_player, static_cast<int>(event.param_id), *value);
}

clap_event_param_value clap_value_event(clap_id id, double value) noexcept {
    return {{}, id, nullptr, -1, -1, -1, -1, value};
}

void clap_send_edits(clap_instrument& instrument, const clap_output_events* list) noexcept {
    for (; const clap_edit* const edit = instrument.edits.first(); instrument.edits.drop_first()) {
        const bool is_taken =
            edit->type == CLAP_EVENT_PARAM_VALUE
                ? clap_send(list, clap_value_event(edit->param_id, edit->value), edit->type, 0)
                : clap_send(list, clap_event_param_gesture{{}, edit->param_id}, edit->type, 0);
        if (!is_taken)
            break;
    }
}

void clap_tell_of_values(const clap_host* host) {
    if (const auto* params = clap_host_extension<clap_host_params>(host, clap_params_id))
        params->rescan(host, CLAP_PARAM_RESCAN_VALUES);
}
