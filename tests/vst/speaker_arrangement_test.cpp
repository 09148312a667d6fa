#include "vst/speaker_arrangement.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace {

struct SpeakerArrangement : testing::Test {
    ~SpeakerArrangement() override {
        speaker_arrangement_deallocate(&arrangement);
        speaker_arrangement_deallocate(&other);
    }
    VstSpeakerArrangement* arrangement = nullptr;
    VstSpeakerArrangement* other = nullptr;
};

TEST_F(SpeakerArrangement, AllocatedOneIsZeroButForItsCount) {
    for (VstInt32 nb_channels : {12, 3, 0}) {
        ASSERT_TRUE(speaker_arrangement_allocate(&arrangement, nb_channels));
        EXPECT_EQ(arrangement->type, 0);
        EXPECT_EQ(arrangement->numChannels, nb_channels);
        const auto* bytes = reinterpret_cast<const char*>(arrangement);
        const auto size = 8 + 112 * static_cast<std::ptrdiff_t>(nb_channels);
        EXPECT_EQ(std::count(bytes + 8, bytes + size, '\0'), size - 8);
    }
}

TEST_F(SpeakerArrangement, RefusedOrReleasedOneIsNull) {
    ASSERT_TRUE(speaker_arrangement_allocate(&arrangement, 2));
    EXPECT_FALSE(speaker_arrangement_allocate(&arrangement, -1));
    EXPECT_EQ(arrangement, nullptr);
    EXPECT_FALSE(speaker_arrangement_allocate(nullptr, 2));
    ASSERT_TRUE(speaker_arrangement_allocate(&arrangement, 2));
    EXPECT_TRUE(speaker_arrangement_deallocate(&arrangement));
    EXPECT_EQ(arrangement, nullptr);
    EXPECT_TRUE(speaker_arrangement_deallocate(&arrangement));
}

TEST_F(SpeakerArrangement, CopiedSpeakerHasATerminatedName) {
    VstSpeakerProperties from{};
    from.azimuth = 1;
    from.type = 5;
    std::memset(from.name, 'n', sizeof(from.name));
    from.future[27] = 6;
    VstSpeakerProperties to{};
    ASSERT_TRUE(speaker_copy(&to, &from));
    EXPECT_EQ(std::string(to.name), std::string(63, 'n'));
    from.name[63] = '\0';
    EXPECT_EQ(std::memcmp(&to, &from, sizeof to), 0) << "the rest is copied as it is";
    EXPECT_FALSE(speaker_copy(&to, nullptr));
    EXPECT_FALSE(speaker_copy(nullptr, &from));
}

TEST_F(SpeakerArrangement, MatchCopiesEverySpeakerPastTheEighth) {
    ASSERT_TRUE(speaker_arrangement_allocate(&arrangement, 12));
    ASSERT_TRUE(speaker_arrangement_allocate(&other, 2));
    arrangement->type = 9;
    VstSpeakerProperties* from = arrangement->speakers;
    for (VstInt32 i = 0; i < 12; ++i)
        from[i].type = 100 + i;
    EXPECT_FALSE(speaker_arrangement_match(&other, nullptr));
    EXPECT_FALSE(speaker_arrangement_match(nullptr, arrangement));
    EXPECT_EQ(other->numChannels, 2);
    for (VstSpeakerArrangement** target : {&other, &arrangement}) // itself too
        ASSERT_TRUE(speaker_arrangement_match(target, arrangement));
    EXPECT_EQ(other->type, 9);
    for (const VstSpeakerArrangement* matched : {other, arrangement}) {
        ASSERT_EQ(matched->numChannels, 12);
        const VstSpeakerProperties* to = matched->speakers;
        for (VstInt32 i = 0; i < 12; ++i)
            EXPECT_EQ(to[i].type, 100 + i);
    }
}

} // namespace
