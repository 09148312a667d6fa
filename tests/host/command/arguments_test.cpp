#include "command/arguments.h"
#include "failure/failure.h"
#include "plugin/parameters.h"

#include <gtest/gtest.h>

namespace {

TEST(Arguments, ChannelLists) {
    for (const auto& [list, bits] : {std::pair{"1", 0x0001ul},
                                     {"1,3-5", 0x001Dul},
                                     {"16", 0x8000ul},
                                     {"1-16", 0xFFFFul},
                                     {"all", 0xFFFFul},
                                     {"2,2", 0x0002ul}})
        EXPECT_EQ(parse_channels(list).to_ulong(), bits) << list;
    for (const char* list : {"0", "17", "5-3", "1,,2", "one", "1-", "-1", "1;2", " 1"})
        EXPECT_THROW((void)parse_channels(list), failure) << list;
}

TEST(Arguments, Settings) {
    for (const auto& [text, name, value] : {std::tuple{"Volume=0.25", "Volume", 0.25f},
                                            {"Flute=on", "Flute", 1.0f},
                                            {"Flute=OFF", "Flute", 0.0f},
                                            {"a=b=1", "a=b", 1.0f},
                                            {"Two Words=0", "Two Words", 0.0f}}) {
        const parameter_setting setting = parse_setting(text);
        EXPECT_EQ(setting.name, name) << text;
        EXPECT_EQ(setting.value, value) << text;
    }
    for (const char* text : {"Volume", "=1", "Volume=", "Volume=1.5", "Volume=-0.1", "Volume=nan",
                             "Volume=1x", "Volume=yes"})
        EXPECT_THROW((void)parse_setting(text), failure) << text;
}

TEST(Arguments, ParameterNames) {
    const std::vector<std::string> names{"Volume", "Mix", "MIX"};
    EXPECT_EQ(find_parameter(names, "Mix"), 1);
    EXPECT_EQ(find_parameter(names, "MIX"), 2);
    EXPECT_THROW((void)find_parameter(names, "Vol"), failure);
}

} // namespace
