#include "control/control.h"

#include "control/parser.h"
#include "ini/ini.h"

#include <cmath>
#include <utility>

namespace {

parameter& parameter_at(const control* p_control, int index) {
    return *p_control->parameters[static_cast<std::size_t>(index)];
}

} // namespace

control* control_create(const char* name) { return new control{.name = name}; }

void control_free(control* p_control) { delete p_control; }

void control_load_ini(control* p_control, const char* config_file_name) {
    const std::unique_ptr<ini_data, decltype(&ini_data_free)> p_text(
        ini_load_data(config_file_name), ini_data_free);
    ini_parse(p_text.get(), handler, p_control);
}

void control_add_parameter(control* p_control, const char* name) {
    p_control->p_described = nullptr;
    if (p_control->parameters.size() == max_nb_parameters)
        return;
    auto p_param = std::make_unique<parameter>();
    p_param->name = name;
    p_param->get_parameter_value = [] { return get_parameter_value_default(); };
    p_param->set_parameter_value = [](float value) { set_parameter_value_default(value); };
    p_control->p_described = p_param.get();
    p_control->parameters.push_back(std::move(p_param));
    ++p_control->nb_parameters;
}

void control_add_config(control* p_control, const char* section, const char* name,
                        unsigned config_type) {
    if (p_control->configs.size() == max_nb_configs)
        return;
    p_control->configs.push_back(
        std::make_unique<config>(config{.section = section, .name = name, .type = config_type}));
    ++p_control->nb_configs;
}

int control_find_parameter(const control* p_control, const char* parameter_name) {
    for (std::size_t i = 0; i < p_control->parameters.size(); ++i)
        if (p_control->parameters[i]->name == parameter_name)
            return static_cast<int>(i);
    return -1;
}

float control_get_parameter(const control* p_control, int index) noexcept {
    const parameter& param = parameter_at(p_control, index);
    return param.value ? param.value->load(std::memory_order_relaxed) : param.get_parameter_value();
}

void control_set_parameter(control* p_control, int index, float value) noexcept {
    if (!std::isfinite(value))
        return;
    const parameter& param = parameter_at(p_control, index);
    if (param.value)
        param.value->store(value, std::memory_order_relaxed);
    else
        param.set_parameter_value(value);
}

float get_parameter_value_default() noexcept { return 0.0f; }

void set_parameter_value_default(float) noexcept {}
