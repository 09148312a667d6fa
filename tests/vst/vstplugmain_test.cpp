#include "vst/vstplugmain.h"

#include "tests/vst/recording.h"

#include <gtest/gtest.h>

namespace {
int nb_created = 0;
}

/// A factory that fails.
AudioEffect* createEffectInstance(audioMasterCallback) {
    ++nb_created;
    return nullptr;
}

namespace {

TEST(VstPlugMain, GivesNullWithoutAHostOrAnEffect) {
    EXPECT_EQ(VSTPluginMain(nullptr), nullptr);
    EXPECT_EQ(nb_created, 0);
    fake_host host;
    fake_host::reply = 2400;
    EXPECT_EQ(VSTPluginMain(fake_host::callback), nullptr);
    EXPECT_EQ(nb_created, 1);
}

} // namespace
