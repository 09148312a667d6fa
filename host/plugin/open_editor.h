#pragma once
/// A plug-in's editor, open in a host's window. All is [ui].

#include "plugin/plugin.h"

struct editor_extent {
    int width = 0; ///< pixels
    int height = 0;

    [[nodiscard]] bool is_empty() const { return width <= 0 || height <= 0; }
};

[[nodiscard]] bool has_editor(const plugin& instrument);

/// Empty if the plug-in does not tell; some know it only once they are open.
[[nodiscard]] editor_extent editor_size(plugin& instrument);

class open_editor {
public:
    /// Opens it in the window of that handle. Throws a failure if the plug-in refuses.
    open_editor(plugin& instrument, void* window);
    ~open_editor(); ///< closes it
    open_editor(const open_editor&) = delete;
    open_editor& operator=(const open_editor&) = delete;

    void idle() { instrument_.ask(effEditIdle); } ///< some 50 times a second

private:
    plugin& instrument_;
};
