#include "platform/file_dialog/file_dialog.h"

#include "tests/temporary_folder.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/wait.h>

namespace {

namespace fs = std::filesystem;

/// A folder of programs that play the desktop's dialogs.
struct FileDialog : testing::Test {
    FileDialog() {
        setenv("PATH", folder.path.c_str(), 1);
        installTool("sleep");
    }
    ~FileDialog() override { setenv("PATH", path_before.c_str(), 1); }

    void install(const std::string& name, const std::string& script) const {
        std::ofstream(folder / name) << "#!/bin/sh\n" << script << "\n";
        fs::permissions(folder / name, fs::perms::owner_all);
    }

    void installTool(const std::string& name) const {
        fs::create_symlink("/bin/" + name, folder / name);
    }

    /// Returns the chosen path, and then what is said on standard error. The panel is closed once a
    /// dialog has made a file of that name, and after some seconds.
    [[nodiscard]] std::string choose() const {
        testing::internal::CaptureStderr();
        const auto path = file_dialog_run(request, nullptr, [this, nb_turns = 400]() mutable {
            return --nb_turns > 0 && !fs::exists(folder / "ready");
        });
        return path.value_or("") + testing::internal::GetCapturedStderr();
    }

    std::string path_before = std::getenv("PATH");
    temporary_folder folder{};
    file_request request{
        .title = "Load bank ... ", .kinds = {{"Bank", "fxb"}}, .folder = "./music"};
};

TEST_F(FileDialog, AsksInTheWordsOfTheDesktopThatIsThere) {
    EXPECT_EQ(choose(), "Load bank ... no file dialog found: install zenity or kdialog\n");
    install("kdialog", "echo \"/$*\"");
    EXPECT_EQ(choose(), "/--title Load bank ...  --getopenfilename ./music *.fxb ");
    install("zenity", "echo \"/$*\"");
    request.saves = true;
    EXPECT_EQ(choose(), "/--file-selection --title=Load bank ...  --save --confirm-overwrite "
                        "--file-filter=Bank (*.fxb) | *.fxb --file-filter=* | *.fxb");
}

TEST_F(FileDialog, OnlyAPathThatFitsFromADialogThatEndsWellIsChosen) {
    const std::string longest(1023, '0'),
        too_long = "Load bank ... the path is longer than 1023 bytes\n";
    struct row {
        const char* script;
        std::string chosen,
            chosen_unwatched; ///< where the host's children are reaped by themselves
        bool saves = false;
    };
    for (const row& r :
         {row{"echo '/a folder/ü\"x.fxb'", "/a folder/ü\"x.fxb", "/a folder/ü\"x.fxb"},
          {"printf x", "x", "x"},
          {"echo /x; exit 1", "", "/x"},
          {"echo /x; kill -9 $$", "", "/x"},
          {"exit 0", "", ""},
          {"echo /x; sleep 9 2>&- &", "/x", "/x"}, // what it started goes on
          {"printf %01023d 0; echo", longest, longest},
          {"printf %01024d 0", too_long, too_long},
          {"while :; do echo /x; done", too_long, too_long},
          {"printf %01020d 0", too_long, too_long, true}}) {
        install("zenity", r.script);
        request.saves = r.saves;
        EXPECT_EQ(choose(), r.chosen) << r.script;
        std::signal(SIGCHLD, SIG_IGN);
        EXPECT_EQ(choose(), r.chosen_unwatched) << r.script;
        std::signal(SIGCHLD, SIG_DFL);
    }
}

TEST_F(FileDialog, SavesUnderANameThatItsFilterFindsAndThatHarmsNoOtherFile) {
    struct row {
        const char *typed, *existing, *saved;
    };
    request.saves = true;
    const auto expect = [&](const row& r) {
        std::ofstream(folder / r.existing) << "a bank";
        install("zenity", "echo " + (folder / r.typed));
        EXPECT_EQ(choose(), folder / r.saved) << r.typed << " beside " << r.existing;
        fs::remove(folder / r.existing);
    };
    for (const row& r : {row{"new", "other", "new.fxb"},
                         {"new.fxb", "other", "new.fxb"},
                         {"new.FXB", "other", "new.FXB"},
                         {"new.2", "other", "new.2.fxb"},
                         {"mine", "mine", "mine"},
                         {"mine", "mine.fxb", "mine"}})
        expect(r);
    request.kinds.clear();
    expect({"new", "other", "new"});
}

TEST_F(FileDialog, NothingIsLeftOfOneWhosePanelIsClosed) {
    const std::string ready = ": > " + (folder / "ready") + "; ", asked = folder / "asked";
    for (const std::string& script :
         {"trap ': > " + asked + "; exit' TERM; echo /half; " + ready + "while :; do :; done",
          "trap '' TERM; echo /x; " + ready + "exec sleep 60",
          "trap '' TERM; " + ready + "exec sleep 60 >&-"})
        for (const auto children : {SIG_DFL, SIG_IGN}) {
            install("zenity", script);
            std::signal(SIGCHLD, children);
            EXPECT_EQ(choose(), "") << script;
            EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child is left of " << script;
            std::signal(SIGCHLD, SIG_DFL);
            fs::remove(folder / "ready");
        }
    EXPECT_TRUE(fs::exists(asked));
}

TEST_F(FileDialog, GetsNothingOfTheHostsButItsDesktop) {
    constexpr const char *passed_on[] = {"HOME", "LC_TIME", "XDG_RUNTIME_DIR", "DESKTOP_SESSION"},
                         *kept[] = {"LD_LIBRARY_PATH", "GTK_MODULES", "DESKTOP_STARTUP_ID",
                                    "XDG_ACTIVATION_TOKEN", "WAYLAND_SOCKET"};
    for (const char* variable : passed_on)
        setenv(variable, "/host", 1);
    for (const char* variable : kept)
        setenv(variable, "/host", 1);
    for (const char* tool : {"ls", "wc", "env"})
        installTool(tool);
    const std::string seen = folder / "seen";
    install("zenity", "ls /proc/self/fd | wc -l > '" + seen + "'; env >> '" + seen + "'");
    const std::ofstream of_the_host(folder / "open file");
    EXPECT_EQ(choose(), "");
    const std::string lines = file_content(seen);
    EXPECT_TRUE(lines.starts_with("4\n")) << lines; // three, and the folder that ls reads
    for (const char* variable : passed_on)
        EXPECT_NE(lines.find(std::string("\n") + variable + "=/host\n"), std::string::npos)
            << variable;
    for (const char* variable : kept)
        EXPECT_EQ(lines.find(variable), std::string::npos) << variable;
}

} // namespace
