#include "number_text/number_text.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();

TEST(NumberText, FloatFillsEightCharacters) {
    const std::pair<float, const char*> rows[] = {
        {0.5f, "0.500000"},       {1.0f, "1.000000"},        {0.0f, "0.000000"},
        {-0.0f, "0.000000"},      {123.456f, "123.4560"},    {-6.0206f, "-6.02059"},
        {1234567.0f, "1234567."}, {9999999.0f, "9999999."},  {-999999.0f, "-999999."},
        {0.9999999f, "0.999999"}, {-0.0000001f, "-0.00000"}, {1e7f, "Huge!"},
        {-1e6f, "-Huge!"},        {infinity, "Huge!"},       {-infinity, "-Huge!"},
        {std::nanf(""), "NaN"},
    };
    for (const auto& [value, text] : rows)
        EXPECT_EQ(number_text(value), text) << value;
}

TEST(NumberText, IntegerTexts) {
    const std::pair<int, const char*> rows[] = {
        {0, "0"},
        {-42, "-42"},
        {99999999, "99999999"},
        {100000000, "Huge!"},
        {-99999999, "-99999999"},
        {-100000000, "-Huge!"},
        {std::numeric_limits<int>::min(), "-Huge!"},
    };
    for (const auto& [value, text] : rows)
        EXPECT_EQ(integer_text(value), text);
}

} // namespace
