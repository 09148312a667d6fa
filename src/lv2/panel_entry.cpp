/// The library's other door: the plug-in's panel, by the interface's table of functions.

#include "lv2/features.h"
#include "lv2/organ.h"
#include "lv2/panel_window.h"
#include "lv2/ports.h"

#include <lv2/instance-access/instance-access.h>

namespace {

lv2_panel& panel_of(LV2UI_Handle panel) { return *static_cast<lv2_panel*>(panel); }

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
