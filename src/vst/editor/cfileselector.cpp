#include "vst/editor/cfileselector.h"

#include "platform/file_dialog/file_dialog.h"
#include "vst/audioeffectx.h"
#include "vst/editor/aeffguieditor.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

namespace {

/// The record's folder is written as on DOS. Its types' extensions are the same for all systems.
file_request system_request(const VstFileSelect& record) {
    file_request request{.saves = record.command == kVstFileSave, .title = record.title};
    if (record.initialPath)
        request.folder = record.initialPath;
    std::ranges::replace(request.folder, '\\',
                         static_cast<char>(std::filesystem::path::preferred_separator));
    for (VstInt32 i = 0; record.fileTypes && i < record.nbFileTypes; ++i)
        request.kinds.push_back({record.fileTypes[i].name, record.fileTypes[i].dosType});
    return request;
}

} // namespace

CFileSelector::CFileSelector(AudioEffectX* owner)
    : effect(owner), editor(static_cast<AEffGUIEditor*>(owner->getEditor())) {}

int CFileSelector::run(VstFileSelect* request) {
    const bool hostHasDialog =
        effect->canHostDo("openFileSelector") && effect->canHostDo("closeFileSelector");
    return hostHasDialog ? runHostsDialog(request) : runSystemsDialog(request);
}

/// Hosts keep something of an answered request until it is closed, among it a path that some answer
/// with in memory of their own. Some answer yes to a user who chose nothing.
bool CFileSelector::runHostsDialog(VstFileSelect* request) {
    const auto life = editor->getLife();
    char* const returnPath = request->returnPath;
    if (!effect->openFileSelector(request) || life.expired())
        return false;
    const char* answer = request->returnPath;
    const std::size_t length = answer ? strnlen(answer, max_path_bytes + 1) : 0;
    const bool isChosen = length > 0 && length <= max_path_bytes;
    if (isChosen)
        std::memmove(returnPath, answer, length + 1);
    effect->closeFileSelector(request);
    request->returnPath = returnPath;
    return isChosen;
}

bool CFileSelector::runSystemsDialog(VstFileSelect* request) {
    const auto life = editor->getLife();
    const auto isOpen = [&] { return !life.expired() && editor->isOpen(); };
    const auto path = file_dialog_run(system_request(*request), editor->getSystemWindow(), [&] {
        editor->idle();
        if (!life.expired())
            effect->masterIdle();
        return isOpen();
    });
    if (!path || !isOpen()) // the system's own loop may have brought the end as well
        return false;
    request->returnPath[path->copy(request->returnPath, max_path_bytes)] = '\0';
    return true;
}
