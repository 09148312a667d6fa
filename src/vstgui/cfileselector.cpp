#include "vstgui/cfileselector.h"

#include "vst/audioeffectx.h"
#include "vstgui/aeffguieditor.h"
#include "vstgui/platform.h"

int CFileSelector::run(VstFileSelect* request) {
    if (effect->canHostDo("openFileSelector") && effect->canHostDo("closeFileSelector"))
        return effect->openFileSelector(request);

    auto* const editor = dynamic_cast<AEffGUIEditor*>(effect->getEditor());
    if (!editor || !editor->isOpen())
        return run_file_dialog(*request, nullptr, [] { return true; });
    return run_file_dialog(*request, editor->getSystemWindow(), [this, editor] {
        editor->idle();
        effect->masterIdle();
        return editor->isOpen();
    });
}
