#include "platform/terminal_keys.h"

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;

TEST(KeyStrokes, AHeldKeyIsStruckOnce) {
    for (const auto& [typed, expected] : // every 50 ms
         {std::pair{U"z.........zzz....", U"z................"},
          {U"z..z..............z", U"z..z..............z"}, // faster than any delay, and slower
          {U"z.....z...", U"z.......z."},                   // but nothing followed
          {U"z.....zxz", U"z......zxz"}}) {
        key_strokes keys;
        std::u32string struck;
        key_strokes::time now{};
        for (const char32_t character : std::u32string{typed}) {
            const bool is_typed = character != U'.';
            const auto told = keys.take(std::u32string(is_typed, character), now += 50ms);
            struck += told.empty() ? U"." : told;
        }
        EXPECT_TRUE(struck == expected) << struck.size();
    }
}

TEST(TerminalKeys, ReportsTellOfPressesAndReleasesAlone) {
    std::string told,
        text = "Z\x1BOP\x1B[122u\x1B[122;1:2u\x1B[122;5:3u\x1B[122;5u\x1B[1103::122;65u";
    for (const terminal_key& key : terminal_keys_parse(text))
        told += {"prs"[static_cast<int>(key.happened)], static_cast<char>(key.character)};
    EXPECT_EQ(told, "szpzrzpz");
}

} // namespace
