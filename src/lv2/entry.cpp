/// The library's door: the one plug-in that it offers, by the interface's table of functions.

#include "lv2/features.h"
#include "lv2/organ.h"
#include "lv2/ports.h"

#include <cstring>
#include <lv2/core/lv2.h>

namespace {

lv2_organ* organ_of(LV2_Handle instance) noexcept NONBLOCKING {
    return static_cast<lv2_organ*>(instance);
}

LV2_Handle instantiate(const LV2_Descriptor*, double sampling_rate, const char*,
                       const LV2_Feature* const* features) {
    const auto* const p_map = lv2_feature<const LV2_URID_Map>(features, LV2_URID__map);
    return p_map ? new lv2_organ(sampling_rate, *p_map) : nullptr;
}

void connect_port(LV2_Handle instance, std::uint32_t port, void* memory) noexcept NONBLOCKING {
    organ_of(instance)->connect_port(port, memory);
}

void activate(LV2_Handle instance) { organ_of(instance)->activate(); }

void run(LV2_Handle instance, std::uint32_t nb_frames) noexcept NONBLOCKING {
    organ_of(instance)->run(nb_frames);
}

void cleanup(LV2_Handle instance) { delete organ_of(instance); }

LV2_State_Status save(LV2_Handle instance, LV2_State_Store_Function store, LV2_State_Handle host,
                      std::uint32_t, const LV2_Feature* const*) {
    return organ_of(instance)->save(store, host);
}

LV2_State_Status restore(LV2_Handle instance, LV2_State_Retrieve_Function retrieve,
                         LV2_State_Handle host, std::uint32_t, const LV2_Feature* const*) {
    return organ_of(instance)->restore(retrieve, host);
}

const void* extension_data(const char* uri) {
    static constexpr LV2_State_Interface state{.save = save, .restore = restore};
    return std::strcmp(uri, LV2_STATE__interface) == 0 ? &state : nullptr;
}

constexpr LV2_Descriptor descriptor{
    .URI = TINDELWAX_URI,
    .instantiate = instantiate,
    .connect_port = connect_port,
    .activate = activate,
    .run = run,
    .deactivate = nullptr,
    .cleanup = cleanup,
    .extension_data = extension_data,
};

} // namespace

LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor(std::uint32_t index) {
    return index == 0 ? &descriptor : nullptr;
}
