#include "vst/vstplugmain.h"

#include "tests/vst/recording.h"

#include <gtest/gtest.h>

namespace {

int nb_created = 0;
bool factory_fails = false;

} // namespace

AudioEffect* createEffectInstance(audioMasterCallback audioMaster) {
    ++nb_created;
    return factory_fails ? nullptr : new default_effect{audioMaster};
}

namespace {

struct VstPlugMain : testing::Test {
    VstPlugMain() { nb_created = 0, factory_fails = false; }
    fake_host host;
};

TEST_F(VstPlugMain, GivesAVstHostARecord) {
    fake_host::reply = 2400;
    AEffect* record = VSTPluginMain(fake_host::callback);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(fake_host::log.calls, "1(0, 0, null, 0)");
    EXPECT_EQ(fake_host::caller, nullptr);
    EXPECT_EQ(record->magic, kEffectMagic);
    EXPECT_EQ(record->dispatcher(record, effClose, 0, 0, nullptr, 0), 1);
}

TEST_F(VstPlugMain, CreatesNothingForOthers) {
    fake_host::reply = 0;
    EXPECT_EQ(VSTPluginMain(fake_host::callback), nullptr);
    EXPECT_EQ(VSTPluginMain(nullptr), nullptr);
    EXPECT_EQ(nb_created, 0);
}

TEST_F(VstPlugMain, FailedFactoryGivesNull) {
    fake_host::reply = 2400;
    factory_fails = true;
    EXPECT_EQ(VSTPluginMain(fake_host::callback), nullptr);
    EXPECT_EQ(nb_created, 1);
}

} // namespace
