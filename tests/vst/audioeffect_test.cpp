#include "vst/audioeffect.h"

#include "tests/vst/recording.h"

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
        const std::string shown = std::string("-123.456").substr(0, static_cast<std::size_t>(len));
        std::string expected(16, '#');
        if (len >= 0)
            expected.replace(
                0, static_cast<std::size_t>(len) + 1,
                shown + std::string(static_cast<std::size_t>(len) + 1 - shown.size(), '\0'));
        EXPECT_EQ(text, expected) << len;
    }
    effect.float2string(1.0f, nullptr, 8);
}

} // namespace
