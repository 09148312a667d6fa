#pragma once
/// A plug-in's editor, open in a host's window. All is [ui].

#include "plugin/plugin.h"

class open_editor {
public:
    /// Opens it in the window of that handle. Throws a failure if the plug-in refuses.
    open_editor(plugin& instrument, void* window) : instrument_{instrument} {
        if (!instrument_.open_editor(window))
            instrument_.fail("refuses to open its editor");
    }
    ~open_editor() { instrument_.close_editor(); }
    open_editor(const open_editor&) = delete;
    open_editor& operator=(const open_editor&) = delete;

    void idle() { instrument_.idle_editor(); } ///< some 50 times a second

private:
    plugin& instrument_;
};
