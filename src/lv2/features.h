#pragma once
/// What a host offers beside the functions of the interface. [any]

#include <cstring>
#include <lv2/core/lv2.h>

/// Returns what comes with the feature, or null where the host does not offer it. The list ends
/// with null, or is null.
template <typename Data>
Data* lv2_feature(const LV2_Feature* const* features, const char* uri) {
    for (; features && *features; ++features)
        if (std::strcmp((*features)->URI, uri) == 0)
            return static_cast<Data*>((*features)->data);
    return nullptr;
}
