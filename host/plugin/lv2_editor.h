#pragma once
/// The editor of an LV2 plug-in, made for X11. It hears what the control ports say and moves them;
/// whatever else it would send is dropped. All is [ui].

#include "platform/library.h"
#include "plugin/plugin.h"

#include <lilv/lilv.h>
#include <lv2/ui/ui.h>
#include <lv2/urid/urid.h>

#include <cstdint>
#include <optional>

class lv2_editor {
public:
    /// Told of each step of what the player moves, on whatever port the editor says it is.
    using listener = std::function<void(panel_edit::step what, std::uint32_t port, float value)>;

    /// Finds out what the plug-in has.
    void attach(LilvWorld* world, const LilvPlugin* plugin);

    [[nodiscard]] bool exists() const { return !binary_.empty(); }
    [[nodiscard]] editor_extent size() const { return size_; } ///< known once it was open

    bool set_scale(float scale); ///< for when it is opened; whether it heeds that

    /// Returns false where it refuses. Map and instance outlive the open editor.
    bool open(void* window, LV2_Handle instance, LV2_URID_Map& map, const listener& told);
    void close();

    void show(std::uint32_t port, float value); ///< that a control port has
    void idle();

private:
    static lv2_editor& of(void* self) { return *static_cast<lv2_editor*>(self); }
    [[nodiscard]] const LV2UI_Descriptor* load();

    std::string plugin_uri_{}, uri_{}, folder_{}, binary_{};
    bool heeds_scale_ = false;
    float scale_ = 0; ///< 0 where the plug-in is not told
    std::optional<library> library_{};
    const LV2UI_Descriptor* descriptor_ = nullptr;
    const LV2UI_Idle_Interface* idling_ = nullptr; ///< null where it needs no turns
    LV2UI_Handle handle_ = nullptr;                ///< null while it is closed
    LV2UI_Resize resize_;
    LV2UI_Touch touch_;
    editor_extent size_{};
    std::vector<float> shown_{}; ///< by port: the value that it was told last
    listener told_{};
};
