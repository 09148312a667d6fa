#include "plugin/lv2_editor.h"

#include "platform/window_size.h"
#include "plugin/lilv_owned.h"

#include <lv2/atom/atom.h>
#include <lv2/instance-access/instance-access.h>
#include <lv2/options/options.h>

#include <limits>
#include <utility>

namespace {

constexpr float nothing_shown = std::numeric_limits<float>::quiet_NaN();

} // namespace

void lv2_editor::attach(LilvWorld* world, const LilvPlugin* plugin) {
    plugin_uri_ = lilv_node_as_uri(lilv_plugin_get_uri(plugin));
    const owned_node x11{lilv_new_uri(world, LV2_UI__X11UI)};
    const owned_node supports{lilv_new_uri(world, LV2_OPTIONS__supportedOption)};
    const owned_node scale{lilv_new_uri(world, LV2_UI__scaleFactor)};
    const owned_uis found{lilv_plugin_get_uis(plugin)};
    LILV_FOREACH(uis, i, found.get()) {
        const LilvUI* const ui = lilv_uis_get(found.get(), i);
        if (exists() || !lilv_ui_is_a(ui, x11.get()))
            continue;
        uri_ = lilv_node_as_uri(lilv_ui_get_uri(ui));
        folder_ = lilv_path(lilv_ui_get_bundle_uri(ui));
        binary_ = lilv_path(lilv_ui_get_binary_uri(ui));
        heeds_scale_ = lilv_world_ask(world, lilv_ui_get_uri(ui), supports.get(), scale.get());
    }
}

bool lv2_editor::set_scale(float scale) {
    scale_ = scale;
    return heeds_scale_;
}

const LV2UI_Descriptor* lv2_editor::load() {
    const library& loaded = library_ ? *library_ : library_.emplace(binary_);
    const auto door = reinterpret_cast<LV2UI_DescriptorFunction>(loaded.find("lv2ui_descriptor"));
    const LV2UI_Descriptor* described = nullptr;
    for (std::uint32_t i = 0; door && (described = door(i)) && uri_ != described->URI; ++i) {
    }
    return described;
}

bool lv2_editor::open(void* window, LV2_Handle instance, LV2_URID_Map& map, const listener& told) {
    close();
    told_ = told;
    resize_ = {this, [](LV2UI_Feature_Handle self, int width, int height) {
                   of(self).size_ = {width, height};
                   return 0;
               }};
    touch_ = {this, [](LV2UI_Feature_Handle self, std::uint32_t port, bool is_grabbed) {
                  of(self).told_(is_grabbed ? panel_edit::step::begins : panel_edit::step::ends,
                                 port, 0);
              }};
    const auto write = [](LV2UI_Controller self, std::uint32_t port, std::uint32_t nb_bytes,
                          std::uint32_t protocol, const void* value) {
        if (protocol == 0 && nb_bytes == sizeof(float))
            of(self).told_(panel_edit::step::sets, port, *static_cast<const float*>(value));
    };
    const auto number = [&map](const char* uri) { return map.map(map.handle, uri); };
    // Without a key an option is the end of them.
    const LV2_URID scale_key = scale_ > 0 ? number(LV2_UI__scaleFactor) : 0;
    const LV2_Options_Option options[] = {
        {LV2_OPTIONS_INSTANCE, 0, scale_key, sizeof scale_, number(LV2_ATOM__Float), &scale_}, {}};
    const LV2_Feature features[] = {
        {LV2_URID__map, &map},
        {LV2_OPTIONS__options, const_cast<LV2_Options_Option*>(options)},
        {LV2_UI__parent, window},
        {LV2_UI__resize, &resize_},
        {LV2_UI__touch, &touch_},
        {LV2_UI__idleInterface, nullptr},
        {LV2_INSTANCE_ACCESS_URI, instance}};
    std::vector<const LV2_Feature*> offered;
    for (const LV2_Feature& feature : features)
        offered.push_back(&feature);
    offered.push_back(nullptr);
    descriptor_ = load();
    LV2UI_Widget widget = nullptr;
    if (descriptor_)
        handle_ = descriptor_->instantiate(descriptor_, plugin_uri_.c_str(), folder_.c_str(), write,
                                           this, &widget, offered.data());
    if (!handle_)
        return false;
    if (size_.is_empty()) {
        const auto [width, height] = window_size_of(widget);
        size_ = {width, height};
    }
    idling_ = descriptor_->extension_data ? static_cast<const LV2UI_Idle_Interface*>(
                  descriptor_->extension_data(LV2_UI__idleInterface))
                                          : nullptr;
    return true;
}

void lv2_editor::close() {
    if (handle_)
        descriptor_->cleanup(std::exchange(handle_, nullptr));
    shown_.clear();
}

void lv2_editor::show(std::uint32_t port, float value) {
    if (!handle_ || !descriptor_->port_event)
        return;
    if (port >= shown_.size())
        shown_.resize(port + 1, nothing_shown);
    if (shown_[port] != value)
        descriptor_->port_event(handle_, port, sizeof value, 0, &(shown_[port] = value));
}

void lv2_editor::idle() {
    if (handle_ && idling_)
        idling_->idle(handle_);
}
