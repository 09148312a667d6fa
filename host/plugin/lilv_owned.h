#pragma once
/// What LILV hands over to its caller, and is freed with the pointer.

#include <lilv/lilv.h>
#include <memory>
#include <string>

template <auto free>
struct free_by_lilv {
    template <typename Type>
    void operator()(Type* p) const {
        free(p);
    }
};

using owned_world = std::unique_ptr<LilvWorld, free_by_lilv<lilv_world_free>>;
using owned_node = std::unique_ptr<LilvNode, free_by_lilv<lilv_node_free>>;
using owned_nodes = std::unique_ptr<LilvNodes, free_by_lilv<lilv_nodes_free>>;
using owned_scale_points = std::unique_ptr<LilvScalePoints, free_by_lilv<lilv_scale_points_free>>;
using owned_uis = std::unique_ptr<LilvUIs, free_by_lilv<lilv_uis_free>>;
using owned_instance = std::unique_ptr<LilvInstance, free_by_lilv<lilv_instance_free>>;
using owned_state = std::unique_ptr<LilvState, free_by_lilv<lilv_state_free>>;
using owned_text = std::unique_ptr<char, free_by_lilv<lilv_free>>;

/// What a file's URI stands for; "" where it is none.
inline std::string lilv_path(const LilvNode* uri) {
    const owned_text path{lilv_node_get_path(uri, nullptr)};
    return path ? path.get() : "";
}
