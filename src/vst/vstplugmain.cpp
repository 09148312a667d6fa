#include "vst/vstplugmain.h"

AEffect* VSTCALLBACK VSTPluginMain(audioMasterCallback audioMaster) {
    if (audioMaster == nullptr || audioMaster(nullptr, audioMasterVersion, 0, 0, nullptr, 0) == 0)
        return nullptr;
    AudioEffect* effect = createEffectInstance(audioMaster);
    return effect ? effect->getAeffect() : nullptr;
}
