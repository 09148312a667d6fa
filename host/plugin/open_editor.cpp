#include "plugin/open_editor.h"

bool has_editor(const plugin& instrument) { return instrument.record().flags & effFlagsHasEditor; }

editor_extent editor_size(plugin& instrument) {
    ERect* p_rect = nullptr;
    instrument.ask(effEditGetRect, 0, 0, &p_rect);
    if (!p_rect)
        return {};
    return {p_rect->right - p_rect->left, p_rect->bottom - p_rect->top};
}

open_editor::open_editor(plugin& instrument, void* window) : instrument_{instrument} {
    if (!instrument_.ask(effEditOpen, 0, 0, window))
        instrument_.fail("refuses to open its editor");
}

open_editor::~open_editor() { instrument_.ask(effEditClose); }
