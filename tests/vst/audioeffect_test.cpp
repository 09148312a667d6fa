#include "vst/audioeffect.h"

#include "tests/vst/recording.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

TEST(AudioEffect, TimesInSamplesAreShownByTheRate) {
    default_effect effect;
    effect.setSampleRate(48000);
    const struct {
        void (AudioEffect::*write)(float, char*, VstInt32);
        float nb_samples;
        const char* text;
    } rows[] = {{&AudioEffect::Hz2string, 0.0f, "0.000000"},
                {&AudioEffect::Hz2string, 100.0f, "480.0000"},
                {&AudioEffect::ms2string, 24.0f, "0.500000"}};
    for (const auto& row : rows) {
        char text[9];
        (effect.*row.write)(row.nb_samples, text, 8);
        EXPECT_STREQ(text, row.text) << row.nb_samples;
    }
}

TEST(AudioEffect, TextsEndAtTheirLength) {
    default_effect effect;
    for (VstInt32 len = -1; len < 12; ++len) {
        std::string text(16, '#');
        effect.float2string(-123.456f, text.data(), len);
        std::string expected("-123.456", static_cast<std::size_t>(std::clamp(len, 0, 8)));
        expected.resize(static_cast<std::size_t>(len + 1));
        expected.resize(text.size(), '#');
        EXPECT_EQ(text, expected) << len;
    }
    effect.float2string(1.0f, nullptr, 8);
}

} // namespace
