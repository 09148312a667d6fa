#include "vst/speaker_arrangement.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace {

TEST(SpeakerArrangement, ACopyHasEverySpeakerPastTheEighthWithItsNameTerminated) {
    VstSpeakerArrangement* from = nullptr;
    VstSpeakerArrangement* to = nullptr;
    ASSERT_TRUE(speaker_arrangement_allocate(&from, 12));
    ASSERT_TRUE(speaker_arrangement_allocate(&to, 2));
    const auto* bytes = reinterpret_cast<const char*>(from->speakers);
    EXPECT_EQ(std::count(bytes, bytes + 12 * sizeof(VstSpeakerProperties), '\0'), 12 * 112);
    from->type = 9;
    VstSpeakerProperties* speakers = from->speakers;
    for (VstInt32 i = 0; i < 12; ++i) {
        speakers[i].type = 100 + i;
        std::memset(speakers[i].name, 'n', sizeof(speakers[i].name));
    }
    EXPECT_FALSE(speaker_arrangement_match(&to, nullptr));
    EXPECT_EQ(to->numChannels, 2);
    for (VstSpeakerArrangement** target : {&to, &from}) // itself too
        ASSERT_TRUE(speaker_arrangement_match(target, from));
    EXPECT_EQ(to->type, 9);
    ASSERT_EQ(to->numChannels, 12);
    const VstSpeakerProperties* copied = to->speakers;
    for (VstInt32 i = 0; i < 12; ++i) {
        EXPECT_EQ(copied[i].type, 100 + i);
        EXPECT_EQ(std::string(copied[i].name), std::string(63, 'n'));
    }
    EXPECT_FALSE(speaker_arrangement_allocate(&to, -1));
    EXPECT_EQ(to, nullptr) << "what was there is released";
    EXPECT_FALSE(speaker_arrangement_allocate(nullptr, 2));
    for (int times = 0; times < 2; ++times)
        EXPECT_TRUE(speaker_arrangement_deallocate(&from));
}

} // namespace
