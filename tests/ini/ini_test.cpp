#include "ini/ini.h"

#include "ini/config_files.h"
#include "tests/temporary_folder.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using text_ptr = std::unique_ptr<ini_data, decltype(&ini_data_free)>;

std::string content(const std::string& name) {
    const text_ptr text{ini_load_data(name.c_str()), ini_data_free};
    return text ? std::string{text->p_data.begin(), text->p_data.end()} : "(none)";
}

/// The handler calls as "[section] name=value; ", refusing the value "no".
int record(void* user, const char* section, const char* name, const char* value) {
    *static_cast<std::string*>(user) +=
        '[' + std::string{section} + "] " + name + '=' + value + "; ";
    return std::string_view{value} != "no";
}

const std::string chars_49(49, 'n');
const std::string chars_197(197, 'v');

const struct {
    std::string text, calls;
    int result = 0;
    std::string printed = "EOF\n";
} rows[] = {
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
    for (const auto& row : rows) {
        const text_ptr text{ini_load_data_from_memory("text", row.text.data(),
                                                      static_cast<unsigned>(row.text.size())),
                            ini_data_free};
        std::string calls;
        testing::internal::CaptureStdout();
        EXPECT_EQ(ini_parse(text.get(), record, &calls), row.result) << row.text;
        EXPECT_EQ(testing::internal::GetCapturedStdout(), row.printed) << row.text;
        EXPECT_EQ(calls, row.calls) << row.text;
        EXPECT_TRUE(std::ranges::equal(text->p_data, row.text)) << "a parse changes the text";
    }
}

TEST(Ini, TextsAreFoundOnDiskThenCompiledInByTheBeginningsOfTheirNames) {
    const std::string control(reinterpret_cast<const char*>(korvel_control), 1150);
    const std::string manual(reinterpret_cast<const char*>(korvel_harping_matrix), 9435);
    ASSERT_EQ(korvel_control_len, 1150u);
    ASSERT_EQ(korvel_harping_matrix_len, 9435u);
    const temporary_folder folder;
    std::filesystem::create_directories(folder / "here");
    std::filesystem::create_directories(folder / "harpmatrix");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder / "here");
    const std::string name = "../harpmatrix/korvel.ini";
    for (const auto& [asked, expected] : {std::pair{"../control/confs/korvel.ini", control},
                                          {name.c_str(), manual},
                                          {"../harp", manual},
                                          {"", control},
                                          {"other.ini", "(none)"},
                                          {"../harpmatrix/korvel.ini2", "(none)"}})
        EXPECT_EQ(content(asked), expected) << asked;

    const std::pair<const char*, std::function<void()>> no_texts[] = {
        {"a folder", [&] { std::filesystem::create_directory(name); }},
        {"a link to nothing", [&] { std::filesystem::create_symlink("nowhere", name); }},
        {"a huge file",
         [&] {
             file_write(name, std::string_view{});
             std::filesystem::resize_file(name, 16 * 1024 * 1024 + 1);
         }},
        {"a pipe that nobody writes", [&] {
             alarm(10); // ends a reader that waits
             mkfifo(name.c_str(), 0600);
         }}};
    for (const auto& [what, create] : no_texts) {
        create();
        EXPECT_EQ(content(name), manual) << what;
        std::filesystem::remove(name);
    }
    alarm(0);
    file_write(name, std::string_view{"a=1\n"});
    std::filesystem::create_directory(folder / "mine");
    file_write(folder / "mine/x.ini", std::string_view{"a=1\n"});
    struct access {
        const char* what;
        std::string path;
        mode_t shared, own;
    };
    for (const auto& [what, path, shared, own] :
         {access{"a file that a group may write", name, 0664, 0644},
          {"a file that anybody may write", name, 0646, 0644},
          {"a folder that anybody may write", folder / "harpmatrix", 0777, 0755},
          {"a folder further up", folder / "", 0775, 0700}}) {
        chmod(path.c_str(), shared);
        testing::internal::CaptureStdout();
        EXPECT_EQ(content(name), manual) << what;
        EXPECT_NE(testing::internal::GetCapturedStdout(), "") << what;
        chmod(path.c_str(), own);
        EXPECT_EQ(content(name), "a=1\n") << what;
    }
    chmod((folder / "harpmatrix").c_str(), 01777);
    EXPECT_EQ(content(name), "a=1\n") << "what is in a sticky folder stays its owner's";
    chmod((folder / "harpmatrix").c_str(), 0755);
    if (geteuid() == 0) { // only the system's user can give files away
        for (const std::string& path : {name, std::string(folder / "harpmatrix")}) {
            ASSERT_EQ(chown(path.c_str(), 65534, 65534), 0);
            EXPECT_EQ(content(name), manual) << path << " is somebody else's";
            ASSERT_EQ(chown(path.c_str(), 0, 0), 0);
        }
        std::filesystem::remove(name);
        const std::string passage = folder / "passage";
        std::filesystem::create_symlink(folder / "mine", passage);
        std::filesystem::create_symlink(passage + "/x.ini", name);
        EXPECT_EQ(content(name), "a=1\n") << "a link through a link";
        ASSERT_EQ(lchown(passage.c_str(), 65534, 65534), 0);
        EXPECT_EQ(content(name), manual) << "a link through somebody else's link";
        ASSERT_EQ(lchown(passage.c_str(), 0, 0), 0);
        ASSERT_EQ(lchown(name.c_str(), 65534, 65534), 0);
        EXPECT_EQ(content(name), manual) << "somebody else's link to one's own file";
        std::filesystem::remove(name);
    }
    for (const std::string_view bytes : {std::string_view{"a=1\r\n\x1A\0", 7}, {}}) {
        file_write(name, bytes);
        EXPECT_EQ(content(name), bytes);
    }
    std::filesystem::current_path(before);
}

} // namespace
