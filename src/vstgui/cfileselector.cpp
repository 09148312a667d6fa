#include "vstgui/cfileselector.h"

#include "vst/audioeffectx.h"
#include "vstgui/aeffguieditor.h"
#include "vstgui/platform.h"

CFileSelector::CFileSelector(AudioEffectX* owner)
    : effect(owner), editor(static_cast<AEffGUIEditor*>(owner->getEditor())) {}

int CFileSelector::run(VstFileSelect* request) {
    const bool hostHasDialog =
        effect->canHostDo("openFileSelector") && effect->canHostDo("closeFileSelector");
    return hostHasDialog ? runHostsDialog(request) : runSystemsDialog(*request);
}

/// Hosts keep something of an answered request until it is closed. Some answer yes to a user who
/// chose nothing.
bool CFileSelector::runHostsDialog(VstFileSelect* request) {
    const auto life = editor->getLife();
    if (!effect->openFileSelector(request) || life.expired())
        return false;
    const bool chosen = request->returnPath[0] != '\0';
    effect->closeFileSelector(request);
    return chosen;
}

bool CFileSelector::runSystemsDialog(const VstFileSelect& request) {
    return run_file_dialog(request, editor->getSystemWindow(), [this, life = editor->getLife()] {
        editor->idle();
        if (!life.expired())
            effect->masterIdle();
        return !life.expired() && editor->isOpen();
    });
}
