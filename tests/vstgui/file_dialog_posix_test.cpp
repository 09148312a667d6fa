#include "vstgui/platform.h"

#include "tests/temporary_folder.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace {

namespace fs = std::filesystem;

/// A folder of programs that play the desktop's dialogs.
struct FileDialog : testing::Test {
    FileDialog() {
        setenv("PATH", folder.path.c_str(), 1);
        request.fileTypes = &type;
        request.nbFileTypes = 1;
        request.returnPath = chosen.data();
        std::snprintf(request.title, sizeof request.title, "Load bank ... ");
    }
    ~FileDialog() override { setenv("PATH", path_before.c_str(), 1); }

    void install(const std::string& name, const std::string& script) const {
        std::ofstream(folder / name) << "#!/bin/sh\n" << script << "\n";
        fs::permissions(folder / name, fs::perms::owner_all);
    }

    bool run() {
        return run_file_dialog(request, nullptr, [this] { return ++nb_turns < turns; });
    }

    std::string path_before = std::getenv("PATH");
    temporary_folder folder{};
    VstFileType type{"Bank", ".fxb", "fxb", "fxb", "audio/fxb", "audio/x-fxb"};
    VstFileSelect request{};
    std::array<char, file_path_size> chosen{};
    int nb_turns = 0;
    int turns = 1 << 20; ///< after which the panel is closed
};

TEST_F(FileDialog, GivesTheChosenPathAsItIs) {
    install("zenity", "echo '/a folder/ü\"x.fxb'");
    EXPECT_TRUE(run());
    EXPECT_STREQ(chosen.data(), "/a folder/ü\"x.fxb");
}

TEST_F(FileDialog, AsksInTheDesktopsWords) {
    install("zenity", R"(for a; do echo "$a" >> ")" + (folder / "seen") + "\"; done");
    request.command = kVstFileSave;
    EXPECT_FALSE(run());
    EXPECT_EQ(file_content(folder / "seen"),
              "--file-selection\n--title=Load bank ... \n--save\n"
              "--confirm-overwrite\n--file-filter=Bank (*.fxb) | *.fxb\n"
              "--file-filter=* | *\n");
}

TEST_F(FileDialog, TriesTheOtherDesktopsToo) {
    install("kdialog", R"(test "$3" = --getopenfilename && echo "/b$5")");
    EXPECT_TRUE(run());
    EXPECT_STREQ(chosen.data(), "/b*.fxb ");
}

TEST_F(FileDialog, CancelsWhenItPrintsNothing) {
    install("zenity", "exit 1");
    EXPECT_FALSE(run());
    EXPECT_STREQ(chosen.data(), "");
}

TEST_F(FileDialog, CancelsWithOneLineWhereThereIsNone) {
    testing::internal::CaptureStderr();
    EXPECT_FALSE(run());
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Load bank ...  no file dialog found: install zenity or kdialog\n");
}

TEST_F(FileDialog, RefusesAPathThatDoesNotFit) {
    install("zenity", "printf '/%01100d' 7");
    testing::internal::CaptureStderr();
    EXPECT_FALSE(run());
    EXPECT_NE(testing::internal::GetCapturedStderr().find("longer than 1023 bytes"),
              std::string::npos);
    EXPECT_STREQ(chosen.data(), "");
}

TEST_F(FileDialog, ClosingThePanelEndsIt) {
    install("zenity", "echo /half; exec sleep 60");
    fs::create_symlink("/bin/sleep", folder / "sleep");
    turns = 3;
    EXPECT_FALSE(run());
    EXPECT_EQ(nb_turns, 3);
}

TEST_F(FileDialog, GetsNothingOfTheHostsButItsDesktop) {
    setenv("LD_LIBRARY_PATH", "/host/lib", 1);
    setenv("GTK_MODULES", "host", 1);
    setenv("XDG_RUNTIME_DIR", "/run", 1);
    setenv("HOME", "/home/player", 1);
    const std::string seen = folder / "seen";
    install("zenity", "ls /proc/self/fd | wc -l > '" + seen
                          + "'; echo \"$LD_LIBRARY_PATH"
                            "|$GTK_MODULES|$XDG_RUNTIME_DIR|$HOME\" >> '"
                          + seen + "'");
    for (const char* tool : {"ls", "wc"})
        fs::create_symlink(std::string("/bin/") + tool, folder / tool);
    const std::ofstream of_the_host(folder / "open file");
    EXPECT_FALSE(run());
    unsetenv("LD_LIBRARY_PATH");
    unsetenv("GTK_MODULES");
    EXPECT_EQ(file_content(folder / "seen"),
              "4\n||/run|/home/player\n"); // three, and the folder that ls reads
}

} // namespace
