#include "vst/vstplugmain.h"

#if defined(_WIN32)
#include "platform/module_handle/module_handle.h"

#include <windows.h>
#endif

AEffect* VSTCALLBACK VSTPluginMain(audioMasterCallback audioMaster) {
    if (audioMaster == nullptr || audioMaster(nullptr, audioMasterVersion, 0, 0, nullptr, 0) == 0)
        return nullptr;
    AudioEffect* effect = createEffectInstance(audioMaster);
    return effect ? effect->getAeffect() : nullptr;
}

#if defined(_WIN32)
void* hInstance = nullptr;

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD, LPVOID) {
    hInstance = instance;
    return TRUE;
}
#endif
