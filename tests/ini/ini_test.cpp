#include "ini/ini.h"

#include "ini/config_files.h"
#include "tests/temporary_folder.h"

#include <gtest/gtest.h>
#include <memory>
#include <string_view>

namespace {

using text_ptr = std::unique_ptr<ini_data, decltype(&ini_data_free)>;

text_ptr load(const char* name) { return {ini_load_data(name), ini_data_free}; }

std::string content(const text_ptr& text) {
    return text ? std::string{text->p_data.begin(), text->p_data.end()} : "(none)";
}

/// The handler calls as "[section] name=value; ", refusing the value "no".
int record(void* user, const char* section, const char* name, const char* value) {
    *static_cast<std::string*>(user) +=
        '[' + std::string{section} + "] " + name + '=' + value + "; ";
    return std::string_view{value} != "no";
}

struct row {
    std::string text;
    std::string calls;
    int result = 0;
    std::string printed = "EOF\n";
};

const std::string chars_49(49, 'n');
const std::string chars_197(197, 'v');

const row rows[] = {
    {"", ""},
    {"a=1\nb=2", "[] a=1; "},
    {"a=1\r\n\r\n[s]\r\nb=2\r\n", "[] a=1; [s] b=2; "},
    {"[organ]\nnb_stops = 4 ; four\n", "[organ] nb_stops=4; "},
    {"x:1\na:b=c\nk = v = w\n", "[] x=1; [] a:b=c; [] k=v = w; "},
    {"k=v;w\nk = ;w\nk=v ;w\nk=v\t;w\nk=\n", "[] k=v;w; [] k=;w; [] k=v; [] k=v; [] k=; "},
    {"# c\n; c\n  # c\n  ; c\n", ""},
    {"k=v\n# c\n;c\n\n  \n", "[] k=v; "},
    {"k=v\n  more \n\t; note\n  [next]\n# c\n again\n",
     "[] k=v; [] k=more; [] k=; note; [] k=[next]; [] k=again; "},
    {"k=v\n[s]\n  a=b\n", "[] k=v; [s] a=b; "},
    {"=5\n more=6\n", "[] =5; [] more=6; "}, // an empty name continues nothing
    {"[a]\n[open\nk=v\n", "[a] k=v; ", 2},
    {"[a ;]\n[b];c]\n[ d ] x\nk=v\n", "[ d ] k=v; ", 1},
    {"novalue\nk ;=v\n=\n", "[] =; ", 1},
    {"a=1\n\nb=no\nc\nd=no\n", "[] a=1; [] b=no; [] d=no; ", 3},
    {"a=1\n no\nb=2\n", "[] a=1; [] a=no; [] b=2; ", 2},
    {"[" + chars_49 + "x]\n" + chars_49 + "x=1\n 2\n",
     '[' + chars_49 + "] " + chars_49 + "x=1; [" + chars_49 + "] " + chars_49 + "=2; "},
    {"a=" + chars_197 + "\nb=2\n", "[] a=" + chars_197 + "; [] b=2; "},
    {"a\nb=v" + chars_197 + "\nc=3\n", "", 1, "ERROR\n"},
    {std::string(199, ' ') + "\nc=3\n", "[] c=3; "},
    {std::string(100000, ' '), "", 0, "ERROR\n"},
    {std::string("a=1\0x\n\0\n=\0\n", 11), "[] a=1; [] =; "},
    {"\xE9=\xFF\x80 \n", "[] \xE9=\xFF\x80; "},
};

TEST(Ini, ParsesByTheRules) {
    EXPECT_EQ(ini_parse(nullptr, record, nullptr), -1);
    for (const row& row : rows) {
        const text_ptr text{ini_load_data_from_memory("text", row.text.data(),
                                                      static_cast<unsigned>(row.text.size())),
                            ini_data_free};
        for (int times = 0; times < 2; ++times) { // a parse leaves the text as it was
            std::string calls;
            testing::internal::CaptureStdout();
            const int result = ini_parse(text.get(), record, &calls);
            EXPECT_EQ(testing::internal::GetCapturedStdout(), row.printed) << row.text;
            EXPECT_EQ(calls, row.calls) << row.text;
            EXPECT_EQ(result, row.result) << row.text;
        }
    }
}

/// Works in a folder of its own, from which "../control/confs/korvel.ini" stays inside.
struct IniFiles : testing::Test {
    temporary_folder folder;
    std::filesystem::path before = std::filesystem::current_path();

    IniFiles() {
        std::filesystem::create_directories(folder / "here");
        std::filesystem::create_directories(folder / "control/confs");
        std::filesystem::current_path(folder / "here");
    }
    ~IniFiles() override { std::filesystem::current_path(before); }
};

TEST_F(IniFiles, TextsAreCompiledInUnderTheirNamesAndTheirBeginnings) {
    const std::string control(reinterpret_cast<const char*>(korvel_control), 1150);
    const std::string manual(reinterpret_cast<const char*>(korvel_harping_matrix), 9435);
    ASSERT_EQ(korvel_control_len, 1150u);
    ASSERT_EQ(korvel_harping_matrix_len, 9435u);
    for (const auto& [name, expected] : {std::pair{"../control/confs/korvel.ini", control},
                                         {"../harpmatrix/korvel.ini", manual},
                                         {"../harp", manual},
                                         {"../control", control},
                                         {"", control},
                                         {"other.ini", "(none)"},
                                         {"../control/confs/korvel.ini2", "(none)"}})
        EXPECT_EQ(content(load(name)), expected) << name;
}

TEST_F(IniFiles, AFileOnDiskComesFirst) {
    file_write(folder / "control/confs/korvel.ini", std::string_view{"a=1\r\n\x1A\0", 7});
    const text_ptr text = load("../control/confs/korvel.ini");
    EXPECT_EQ(content(text), (std::string_view{"a=1\r\n\x1A\0", 7}));
    EXPECT_EQ(text->data_len, 7u);
    EXPECT_EQ(text->filename, "../control/confs/korvel.ini");

    file_write(folder / "here/empty.ini", std::string_view{});
    EXPECT_EQ(content(load("empty.ini")), "");
}

TEST_F(IniFiles, WhatIsNoFileOrTooLargeLeavesTheCompiledInText) {
    const std::string name = folder / "control/confs/korvel.ini";
    const auto expect_compiled_in = [&](const char* what) {
        EXPECT_EQ(content(load("../control/confs/korvel.ini")).size(), 1150u) << what;
        std::filesystem::remove(name);
    };
    std::filesystem::create_directory(name);
    expect_compiled_in("a folder");
    std::filesystem::create_symlink("nowhere", name);
    expect_compiled_in("a link to nothing");
    file_write(name, std::string_view{});
    std::filesystem::resize_file(name, 16 * 1024 * 1024 + 1);
    expect_compiled_in("a huge file");
}

} // namespace
