#include "vstgui/cfileselector.h"

#include "platform/file_dialog/file_dialog.h"
#include "vst/audioeffectx.h"
#include "vstgui/aeffguieditor.h"

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
    const auto life = editor->getLife();
    const auto isOpen = [&] { return !life.expired() && editor->isOpen(); };
    const bool chosen = run_file_dialog(request, editor->getSystemWindow(), [&] {
        editor->idle();
        if (!life.expired())
            effect->masterIdle();
        return isOpen();
    });
    return chosen && isOpen(); // the system's own loop may have brought the end as well
}
