/// The library's other door: the plug-in's panel, by the interface's table of functions.

#include "lv2/features.h"
#include "lv2/organ.h"
#include "lv2/panel_window.h"
#include "lv2/ports.h"

#include <lv2/atom/atom.h>
#include <lv2/instance-access/instance-access.h>
#include <lv2/options/options.h>
#include <lv2/urid/urid.h>

namespace {

lv2_panel& panel_of(LV2UI_Handle panel) { return *static_cast<lv2_panel*>(panel); }

/// What the host says of its screen, or 0.
float told_scale(const LV2_Feature* const* features) {
    const auto* const map = lv2_feature<const LV2_URID_Map>(features, LV2_URID__map);
    const auto* option = lv2_feature<const LV2_Options_Option>(features, LV2_OPTIONS__options);
    if (!map || !option)
        return 0;
    const auto number = [map](const char* uri) { return map->map(map->handle, uri); };
    for (; option->key != 0; ++option)
        if (option->context == LV2_OPTIONS_INSTANCE && option->key == number(LV2_UI__scaleFactor)
            && option->type == number(LV2_ATOM__Float) && option->value)
            return *static_cast<const float*>(option->value);
    return 0;
}

LV2UI_Handle instantiate(const LV2UI_Descriptor*, const char* plugin_uri, const char*,
                         LV2UI_Write_Function write, LV2UI_Controller controller,
                         LV2UI_Widget* widget, const LV2_Feature* const* features) {
    if (std::strcmp(plugin_uri, TINDELWAX_URI) != 0)
        return nullptr;
    auto* const organ = lv2_feature<lv2_organ>(features, LV2_INSTANCE_ACCESS_URI);
    const auto* const touch = lv2_feature<const LV2UI_Touch>(features, LV2_UI__touch);
    auto opened = std::make_unique<lv2_panel>(organ ? &organ->played : nullptr,
                                              lv2_told_host{write, controller, touch});
    lv2_panel_window& window = opened->get_window();
    window.set_scale(told_scale(features));
    if (!window.open(lv2_feature<void>(features, LV2_UI__parent)))
        return nullptr;
    if (const auto* const resize = lv2_feature<const LV2UI_Resize>(features, LV2_UI__resize))
        resize->ui_resize(resize->handle, window.width(), window.height());
    *widget = window.handle();
    return opened.release();
}

void cleanup(LV2UI_Handle panel) { delete &panel_of(panel); }

void hear_port(LV2UI_Handle panel, std::uint32_t port, std::uint32_t size, std::uint32_t format,
               const void* buffer) {
    if (format == 0 && size == sizeof(float))
        panel_of(panel).hear_port(port, *static_cast<const float*>(buffer));
}

const void* extension_data(const char* uri) {
    static constexpr LV2UI_Idle_Interface idling{.idle = [](LV2UI_Handle panel) {
        panel_of(panel).idle();
        return 0;
    }};
    return std::strcmp(uri, LV2_UI__idleInterface) == 0 ? &idling : nullptr;
}

constexpr LV2UI_Descriptor descriptor{
    .URI = TINDELWAX_PANEL_URI,
    .instantiate = instantiate,
    .cleanup = cleanup,
    .port_event = hear_port,
    .extension_data = extension_data,
};

} // namespace

LV2_SYMBOL_EXPORT const LV2UI_Descriptor* lv2ui_descriptor(std::uint32_t index) {
    return index == 0 ? &descriptor : nullptr;
}
