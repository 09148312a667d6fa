#include "platform/file_dialog/file_dialog.h"

#include "tests/temporary_folder.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>

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

    void installTool(const std::string& name) const {
        fs::create_symlink("/bin/" + name, folder / name);
    }

    bool run() {
        return run_file_dialog(request, nullptr, [this] { return ++nb_turns < turns; });
    }

    /// Closes the panel once the dialog has made the file.
    bool runUntil(const std::string& file) {
        return run_file_dialog(request, nullptr, [&] { return !fs::exists(file); });
    }

    /// What is chosen when the dialog prints `path`; nothing when it is refused.
    std::string choose(const std::string& path) {
        install("zenity", "echo '" + path + "'");
        return run() ? chosen.data() : "";
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

TEST_F(FileDialog, OnlyAPathFromADialogThatEndsWellIsChosen) {
    struct row {
        const char* script;
        bool is_chosen, is_chosen_unwatched; ///< where the host's children are reaped by themselves
    };
    installTool("sleep");
    for (const row r : {row{"echo /x", true, true},
                        {"echo /x; exit 1", false, true},
                        {"echo /x; kill -9 $$", false, true},
                        {"exit 1", false, false},
                        {"exit 0", false, false},
                        {"echo /x; sleep 8 2>&- &", true, true}}) { // what it started goes on
        install("zenity", r.script);
        turns = nb_turns + 200; // some four seconds
        EXPECT_EQ(run(), r.is_chosen) << r.script;
        std::signal(SIGCHLD, SIG_IGN);
        EXPECT_EQ(run(), r.is_chosen_unwatched) << r.script;
        std::signal(SIGCHLD, SIG_DFL);
    }
}

TEST_F(FileDialog, CancelsWithOneLineWhereThereIsNone) {
    testing::internal::CaptureStderr();
    EXPECT_FALSE(run());
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Load bank ... no file dialog found: install zenity or kdialog\n");
}

TEST_F(FileDialog, SavesUnderANameThatItsFilterFindsAndThatHarmsNoOtherFile) {
    struct row {
        const char *typed, *existing, *saved;
    };
    request.command = kVstFileSave;
    for (const row r : {row{"new", "other", "new.fxb"},
                        {"new.fxb", "other", "new.fxb"},
                        {"new.FXB", "other", "new.FXB"},
                        {"new.2", "other", "new.2.fxb"},
                        {"mine", "mine", "mine"},
                        {"mine", "mine.fxb", "mine"}}) {
        std::ofstream(folder / r.existing) << "a bank";
        EXPECT_EQ(choose(folder / r.typed), folder / r.saved) << "beside " << r.existing;
        fs::remove(folder / r.existing);
    }
    request.command = kVstFileLoad;
    EXPECT_EQ(choose("/new"), "/new");
}

TEST_F(FileDialog, NeedsNoFileTypes) {
    request.command = kVstFileSave;
    request.nbFileTypes = 0;
    EXPECT_EQ(choose("/new"), "/new");
    request.nbFileTypes = -1;
    EXPECT_EQ(choose("/new"), "/new");
    request.nbFileTypes = 1;
    request.fileTypes = nullptr;
    EXPECT_EQ(choose("/new"), "/new");
}

TEST_F(FileDialog, RefusesAPathThatDoesNotFit) {
    struct row {
        VstFileSelectCommand command;
        std::size_t length;
        bool fits;
    };
    for (const row r : {row{kVstFileLoad, 1023, true},
                        {kVstFileLoad, 1024, false},
                        {kVstFileSave, 1019, true}, // with the extension
                        {kVstFileSave, 1020, false}}) {
        request.command = r.command;
        chosen.fill('\0');
        testing::internal::CaptureStderr();
        EXPECT_EQ(choose(std::string("/").append(r.length - 1, 'x')).empty(), !r.fits) << r.length;
        EXPECT_EQ(testing::internal::GetCapturedStderr().find("longer than 1023 bytes")
                      == std::string::npos,
                  r.fits);
        EXPECT_EQ(std::strlen(chosen.data()), r.fits ? 1023 : 0);
    }
}

TEST_F(FileDialog, ClosingThePanelAsksItToEnd) {
    const std::string ready = folder / "ready", asked = folder / "asked";
    install("zenity", "trap ': > " + asked + "; exit' TERM; echo /half; : > " + ready
                          + "; while :; do :; done");
    EXPECT_FALSE(runUntil(ready));
    EXPECT_TRUE(fs::exists(asked));
}

TEST_F(FileDialog, NothingIsLeftOfOneThatWillNotEnd) {
    const std::string ready = folder / "ready";
    installTool("sleep");
    for (const char* output : {"", " >&-"})
        for (const auto children : {SIG_DFL, SIG_IGN}) {
            install("zenity", "trap '' TERM; echo /x; : > " + ready + "; exec sleep 60" + output);
            fs::remove(ready);
            std::signal(SIGCHLD, children);
            const auto start = std::chrono::steady_clock::now();
            EXPECT_FALSE(runUntil(ready));
            EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
            EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child is left";
            std::signal(SIGCHLD, SIG_DFL);
        }
}

TEST_F(FileDialog, GetsNothingOfTheHostsButItsDesktop) {
    struct row {
        const char* variable;
        bool is_passed_on;
    };
    constexpr row rows[] = {{"HOME", true},
                            {"LC_TIME", true},
                            {"XDG_RUNTIME_DIR", true},
                            {"DESKTOP_SESSION", true},
                            {"LD_LIBRARY_PATH", false},
                            {"GTK_MODULES", false},
                            {"DESKTOP_STARTUP_ID", false},
                            {"XDG_ACTIVATION_TOKEN", false},
                            {"WAYLAND_SOCKET", false}};
    for (const row& r : rows)
        setenv(r.variable, "/host", 1);
    const std::string seen = folder / "seen";
    install("zenity", "ls /proc/self/fd | wc -l > '" + seen + "'; env >> '" + seen + "'");
    for (const char* tool : {"ls", "wc", "env"})
        installTool(tool);
    const std::ofstream of_the_host(folder / "open file");
    EXPECT_FALSE(run());
    const std::string lines = file_content(seen);
    EXPECT_TRUE(lines.starts_with("4\n")) << lines; // three, and the folder that ls reads
    for (const row& r : rows) {
        EXPECT_EQ(lines.find(std::string("\n") + r.variable + "=/host\n") != std::string::npos,
                  r.is_passed_on)
            << r.variable;
        unsetenv(r.variable);
    }
}

} // namespace
