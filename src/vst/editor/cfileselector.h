#pragma once
/// Lets the user choose a file: in the host's dialog when it offers one, else in the system's. [ui]

#include "vst/interface.h"

class AEffGUIEditor;
class AudioEffectX;

class CFileSelector {
public:
    /// The effect's editor is an AEffGUIEditor with an open panel, which goes on during the
    /// system's dialog. A host that closes the panel meanwhile, or the effect, cancels the dialog.
    explicit CFileSelector(AudioEffectX* owner);

    /// Returns non-zero when a file was chosen, whose full path is then at `request->returnPath`,
    /// which holds 1024 bytes.
    int run(VstFileSelect* request);

private:
    bool runHostsDialog(VstFileSelect* request);
    bool runSystemsDialog(VstFileSelect* request);

    AudioEffectX* effect;
    AEffGUIEditor* editor;
};
