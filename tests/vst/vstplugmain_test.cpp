#include "vst/vstplugmain.h"

#include <gtest/gtest.h>

/// A factory that fails.
AudioEffect* createEffectInstance(audioMasterCallback) { return nullptr; }

namespace {

VstIntPtr VSTCALLBACK host(AEffect*, VstInt32, VstInt32, VstIntPtr, void*, float) { return 2400; }

TEST(VstPlugMain, GivesNullWithoutAHostOrAnEffect) {
    EXPECT_EQ(VSTPluginMain(nullptr), nullptr);
    EXPECT_EQ(VSTPluginMain(host), nullptr);
}

} // namespace
