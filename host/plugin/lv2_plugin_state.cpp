#include "plugin/lv2_plugin.h"

#include <algorithm>
#include <atomic>
#include <lv2/state/state.h>

namespace {

constexpr const char* state_uri = "urn:tindelwax:state"; // any would do

} // namespace

float* lv2_plugin::value_of(const char* symbol) {
    const owned_node named{lilv_new_string(world_.get(), symbol)};
    const LilvPort* const described = lilv_plugin_get_port_by_symbol(plugin_, named.get());
    const auto found = std::ranges::find(ports_, described, &port::described);
    return found != ports_.end() && found->is_control ? found->values.data() : nullptr;
}

std::optional<std::string> lv2_plugin::save() {
    const auto tell = [](const char* symbol, void* self, std::uint32_t* size,
                         std::uint32_t* type) -> const void* {
        auto& saved = *static_cast<lv2_plugin*>(self);
        *size = sizeof(float);
        *type = saved.number(LV2_ATOM__Float);
        return saved.value_of(symbol);
    };
    const owned_state state{lilv_state_new_from_instance(
        plugin_, instance_.get(), &map_, nullptr, nullptr, nullptr, nullptr, tell, this,
        LV2_STATE_IS_POD | LV2_STATE_IS_PORTABLE, nullptr)};
    const owned_text text{
        lilv_state_to_string(world_.get(), &map_, &unmap_, state.get(), state_uri, nullptr)};
    if (!text)
        fail("refuses to save its state");
    return text.get();
}

bool lv2_plugin::load(std::string_view state) {
    const owned_state read{
        lilv_state_new_from_string(world_.get(), &map_, std::string{state}.c_str())};
    if (!read)
        return false;
    const auto set = [](const char* symbol, void* self, const void* value, std::uint32_t size,
                        std::uint32_t type) {
        auto& loaded = *static_cast<lv2_plugin*>(self);
        float* const to = loaded.value_of(symbol);
        if (to && size == sizeof *to && type == loaded.number(LV2_ATOM__Float))
            std::atomic_ref{*to}.store(*static_cast<const float*>(value),
                                       std::memory_order_relaxed);
    };
    lilv_state_restore(read.get(), instance_.get(), set, this, 0, nullptr);
    return true;
}
