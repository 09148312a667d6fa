#include "vst/value_text.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();

std::string float_text(float value) {
    char text[9];
    float_to_text(value, text, 8);
    return text;
}

TEST(ValueText, FloatFillsEightCharacters) {
    const std::pair<float, const char*> rows[] = {
        {0.5f, "0.500000"},       {1.0f, "1.000000"},        {0.0f, "0.000000"},
        {-0.0f, "0.000000"},      {123.456f, "123.4560"},    {-6.0206f, "-6.02059"},
        {1234567.0f, "1234567."}, {9999999.0f, "9999999."},  {-999999.0f, "-999999."},
        {0.9999999f, "0.999999"}, {-0.0000001f, "-0.00000"}, {1e7f, "Huge!"},
        {-1e6f, "-Huge!"},        {infinity, "Huge!"},       {-infinity, "-Huge!"},
        {std::nanf(""), "NaN"},
    };
    for (const auto& [value, text] : rows)
        EXPECT_EQ(float_text(value), text) << value;
}

TEST(ValueText, FloatIsTruncatedNeverRounded) {
    std::mt19937 random{20};
    std::uniform_real_distribution<float> exponent{-7.0f, 5.9f};
    for (int i = 0; i < 20000; ++i) {
        const float magnitude = std::pow(10.0f, exponent(random));
        for (float value : {magnitude, -magnitude}) {
            const std::string text = float_text(value);
            ASSERT_EQ(text.size(), 8u) << value;
            const double unit = std::pow(10.0, -static_cast<double>(7 - text.find('.')));
            const double lost = std::fabs(static_cast<double>(value)) - std::fabs(std::stod(text));
            ASSERT_GT(lost, -1e-9) << value << " became " << text;
            ASSERT_LT(lost, unit) << value << " became " << text;
        }
    }
}

TEST(ValueText, IntegerTexts) {
    const std::pair<VstInt32, const char*> rows[] = {
        {0, "0"},
        {-42, "-42"},
        {99999999, "99999999"},
        {100000000, "Huge!"},
        {-99999999, "-99999999"},
        {-100000000, "-Huge!"},
        {std::numeric_limits<VstInt32>::min(), "-Huge!"},
    };
    for (const auto& [value, expected] : rows) {
        char text[13];
        int_to_text(value, text, 12);
        EXPECT_STREQ(text, expected);
    }
}

/// A buffer that shows where something was written.
struct guarded_text {
    char bytes[24];
    guarded_text() { std::memset(bytes, '#', sizeof(bytes)); }
    std::string from(VstInt32 offset) const {
        return {bytes + offset, sizeof(bytes) - static_cast<std::size_t>(offset)};
    }
};

TEST(ValueText, EveryWriterEndsAtMaxLen) {
    void (*const writers[])(char*, VstInt32) = {
        [](char* text, VstInt32 maxLen) { float_to_text(-123.456f, text, maxLen); },
        [](char* text, VstInt32 maxLen) { float_to_text(1e30f, text, maxLen); },
        [](char* text, VstInt32 maxLen) { int_to_text(-1234567, text, maxLen); },
        [](char* text, VstInt32 maxLen) {
            vst_strncpy(text, "a long", maxLen);
            vst_strncat(text, " enough text", maxLen);
        },
    };
    for (const auto& write : writers) {
        guarded_text whole;
        write(whole.bytes, 20);
        for (VstInt32 maxLen = 0; maxLen < 20; ++maxLen) {
            guarded_text text;
            write(text.bytes, maxLen);
            EXPECT_EQ(text.from(maxLen + 1), guarded_text{}.from(maxLen + 1)) << maxLen;
            EXPECT_EQ(text.bytes[maxLen], '\0') << maxLen;
            EXPECT_EQ(std::string(text.bytes),
                      std::string(whole.bytes).substr(0, static_cast<std::size_t>(maxLen)));
        }
    }
}

TEST(ValueText, NothingIsWrittenWhereNothingFits) {
    guarded_text text;
    float_to_text(1.0f, text.bytes, -1);
    vst_strncat(text.bytes, "x", -1);
    EXPECT_EQ(text.from(0), guarded_text{}.from(0));
    float_to_text(1.0f, nullptr, 8);
    int_to_text(1, nullptr, 8);
}

} // namespace
