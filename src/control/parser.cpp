#include "control/parser.h"

#include "control/control.h"
#include "ini/ini_text.h"

namespace {

unsigned integer(const char* text) { return static_cast<unsigned>(ini_integer(text)); }

struct setting {
    const char* name;
    void (*apply)(parameter& param, const char* value);
};

constexpr setting settings[] = {
    {"cc", [](parameter& param, const char* value) { param.midi_cc = integer(value); }},
    {"channel", [](parameter& param, const char* value) { param.midi_channel = integer(value); }},
    {"color", [](parameter& param, const char* value) { param.color = integer(value); }},
    {"key_up", [](parameter& param, const char* value) { param.key_up = value; }},
    {"key_down", [](parameter& param, const char* value) { param.key_down = value; }},
    {"type", [](parameter& param, const char* value) { param.type_name = value; }},
    {"manual", [](parameter& param, const char* value) { param.manual = integer(value); }},
    {"unit", [](parameter& param, const char* value) { param.unit = value; }},
    {"default",
     [](parameter& param, const char* value) { param.default_value = ini_decimal(value); }},
};

} // namespace

int handler(void* user, const char* section, const char* name, const char* value) {
    control* p_control = static_cast<control*>(user);
    if (!ini_equals(section, "control"))
        return 1;
    if (ini_equals(name, "name")) {
        control_add_parameter(p_control, value);
        return 1;
    }
    if (!p_control->p_described)
        return 1;
    for (const setting& known : settings)
        if (ini_equals(name, known.name))
            known.apply(*p_control->p_described, value);
    return 1;
}
