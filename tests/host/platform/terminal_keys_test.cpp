#include "platform/terminal_keys.h"

#include <map>

#include <gtest/gtest.h>

namespace {

TEST(KeyStrokes, AHeldKeyIsStruckOnce) {
    struct row {
        std::map<int, std::u32string> characters, struck; // by ms
    };
    for (const auto& [characters, struck] : std::vector<row>{
             {{{0, U"z"}, {500, U"z"}, {540, U"z"}, {580, U"z"}, {670, U"z"}}, {{0, U"z"}}}, // held
             {{{0, U"z"}, {250, U"zz"}, {950, U"z"}}, {{0, U"z"}, {950, U"z"}}},
             {{{0, U"z"}, {150, U"z"}}, {{0, U"z"}, {150, U"z"}}}, // faster than any delay
             {{{0, U"z"}, {300, U"z"}}, {{0, U"z"}, {400, U"z"}}}, // but nothing followed
             {{{0, U"z"}, {300, U"z"}, {310, U"x"}}, {{0, U"z"}, {310, U"zx"}}},
             {{{0, U"zxz"}}, {{0, U"zxz"}}}}) {
        key_strokes keys;
        std::map<int, std::u32string> told;
        for (int ms = 0; ms < 2000; ms += 10) {
            const auto came = characters.find(ms);
            const auto now = key_strokes::time{std::chrono::milliseconds{ms}};
            const auto strokes = keys.take(came == characters.end() ? U"" : came->second, now);
            if (!strokes.empty())
                told[ms] = strokes;
        }
        EXPECT_TRUE(told == struck) << characters.rbegin()->first << " ms";
    }
}

TEST(TerminalKeys, ReportsTellOfPressesAndReleasesAlone) {
    using what = terminal_key::what;
    std::string text =
        "Z\x1B[122u\x1B[122;1:2u\x1B[122;5:3u\x1B[122;5:1u\x1B[1103::122;65:1u\x1B[12";
    const auto keys = terminal_keys_parse(text);
    const std::vector expected{what::struck, what::pressed, what::released, what::pressed};
    ASSERT_EQ(keys.size(), expected.size());
    for (std::size_t i = 0; i < keys.size(); ++i) {
        EXPECT_EQ(keys[i].happened, expected[i]) << i;
        EXPECT_EQ(keys[i].character, U'z') << i;
    }
    EXPECT_EQ(text, "\x1B[12") << "waits for its end";
}

} // namespace
