#pragma once
/// Lets the user choose a file: in the host's dialog when it offers one, else in the system's. [ui]

#include "vst/interface.h"

class AudioEffectX;

class CFileSelector {
public:
    /// `effect` outlives the selector; its editor's panel, when it is open, goes on meanwhile.
    explicit CFileSelector(AudioEffectX* owner) : effect(owner) {}

    /// Returns non-zero when a file was chosen, whose full path is then at `request->returnPath`,
    /// which holds file_path_size bytes.
    int run(VstFileSelect* request);

private:
    AudioEffectX* effect;
};
