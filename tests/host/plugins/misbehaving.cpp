// Plug-ins that fail in one way each, as chosen by FAULT.

#include "vst/interface.h"

#include <cstdio>
#include <cstdlib>

#define FAULT_ANSWERS_NULL 1
#define FAULT_ABORTS 2
#define FAULT_EXITS 3
#define FAULT_ANSWERS_RUBBISH 4
#define FAULT_HAS_NO_ENTRY 5
#define FAULT_ENDLESS_PARAMETERS 6

#if FAULT == FAULT_HAS_NO_ENTRY
extern "C" __attribute__((visibility("default"))) int unrelated() { return 0; }
#else
extern "C" __attribute__((visibility("default"))) AEffect* VSTCALLBACK
VSTPluginMain(audioMasterCallback) {
#if FAULT == FAULT_ABORTS
    std::fputs("last words\n", stderr);
    std::abort();
#elif FAULT == FAULT_EXITS
    std::exit(0);
#elif FAULT == FAULT_ANSWERS_RUBBISH || FAULT == FAULT_ENDLESS_PARAMETERS
    static AEffect rubbish{};
    rubbish.magic = FAULT == FAULT_ENDLESS_PARAMETERS ? kEffectMagic : 0;
    rubbish.numParams = INT32_MAX;
    rubbish.dispatcher = [](AEffect*, VstInt32, VstInt32, VstIntPtr, void*, float) {
        return VstIntPtr{0};
    };
    rubbish.setParameter = [](AEffect*, VstInt32, float) {};
    rubbish.getParameter = [](AEffect*, VstInt32) { return 0.0f; };
    return &rubbish;
#else
    return nullptr;
#endif
}
#endif
