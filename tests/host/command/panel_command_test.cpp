#include "platform/display.h"
#include "tests/host/command/command_fixture.h"
#include "tests/host/picture_content.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>

namespace {

constexpr unsigned red = 0xFF0000, green = 0x00FF00, blue = 0x0000FF;

struct PanelCommand : command_fixture {
    PanelCommand() { surroundings.environment["DISPLAY"] = ""; }

    picture pictured(words options, const std::string& plugin) {
        options.insert(options.begin(), {"panel", "-o", "panel.png"});
        const process_result result = run(options, plugin);
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(result.out + result.err, "");
        return picture_content(folder / "panel.png");
    }
};

/// Of squares of one colour that all of the picture is made of, the side.
int square_size(const picture& shown) {
    const auto is_made_of = [&shown](int side) {
        for (int y = 0; y < shown.height; ++y)
            for (int x = 0; x < shown.width; ++x)
                if (colour_at(shown, x, y) != colour_at(shown, x - x % side, y - y % side))
                    return false;
        return true;
    };
    int side = 8;
    while (!is_made_of(side))
        --side;
    return side;
}

TEST_F(PanelCommand, ShowsOurOwnPanelAndItsSwitches) {
    const picture plain = pictured({}, TEST_INSTRUMENT);
    EXPECT_EQ(plain.width, 480);
    EXPECT_EQ(plain.height, 400);
    const auto turned_at = [this](const char* scale, const std::string& plugin) {
        words options{"--set", "Vibrato=on"};
        if (*scale)
            options.insert(options.end(), {"--scale", scale});
        return pictured(options, plugin);
    };
    const picture turned = turned_at("", TEST_INSTRUMENT);
    surroundings.environment["TINDELWAX_SCALE"] = "2"; // where a host tells nothing
    EXPECT_EQ(turned_at("1", TEST_INSTRUMENT), turned);
    for (const auto& [scale, width, square] :
         {std::tuple{"", 960, 1}, {"3", 1440, 1}, {"4", 1920, 4}, {"6", 2880, 2}}) {
        const picture large = turned_at(scale, TEST_INSTRUMENT);
        ASSERT_EQ(large.width, width);
        ASSERT_EQ(large.height, width / 6 * 5);
        EXPECT_EQ(square_size(large), square) << "drawn as large as can be";
        for (const char* file : {TEST_CLAP, TEST_LV2})
            EXPECT_TRUE(square > 1 || turned_at(scale, file) == large) << file << " " << scale;
    }
    int nb_different = 0;
    for (int y = 0; y < plain.height; ++y)
        for (int x = 0; x < plain.width; ++x) {
            nb_different += colour_at(plain, x, y) != colour_at(turned, x, y);
        }
    EXPECT_GT(nb_different, 100);
    EXPECT_LE(nb_different, 56 * 128) << "more than one switch";
}

TEST_F(PanelCommand, WaitsUntilThePictureStandsStillAndClosesTheEditor) {
    surroundings.environment["TINDELWAX_TEST_LOG"] = folder / "log";
    for (const auto& [options, colour] :
         {std::pair{words{}, blue}, {words{"--set", "Green=1"}, green}}) {
        const picture shown = pictured(options, "painter");
        ASSERT_EQ(shown.width, 40);
        ASSERT_EQ(shown.height, 30);
        for (int y = 0; y < 30; ++y)
            for (int x = 0; x < 40; ++x)
                ASSERT_EQ(colour_at(shown, x, y), x < 20 ? red : colour) << x << ", " << y;
    }
    EXPECT_EQ(nb_lines(file_content(folder / "log")), 4) << "each in the trial run and for good";
}

TEST_F(PanelCommand, AnEditorThatMovesOrGrowsIsPicturedToo) {
    for (const char* mood : {"is restless", "grows"}) {
        surroundings.environment["TINDELWAX_TEST_EDITOR"] = mood;
        const picture shown = pictured({}, "painter");
        ASSERT_EQ(shown.width, 40) << mood;
        EXPECT_EQ(colour_at(shown, 19, 29), red) << mood;
    }
}

TEST_F(PanelCommand, UsesTheUsersDisplayOfAnyDepth) {
    surroundings.environment["PATH"] = folder.path; // without another server
    for (const int depth : {16, 24, 30}) {
        const display server{display::choice::unseen, depth};
        surroundings.environment["DISPLAY"] = std::getenv("DISPLAY");
        const picture shown = pictured({}, "painter");
        ASSERT_EQ(shown.width, 40) << "depth " << depth;
        EXPECT_EQ(colour_at(shown, 0, 0), red) << "depth " << depth;
        EXPECT_EQ(colour_at(shown, 39, 29), blue) << "depth " << depth;
    }
}

TEST_F(PanelCommand, TheDisplayThatItStartedEndsWithIt) {
    file_write(folder / "Xvfb", "#!/bin/sh\necho $$ >\"" + (folder / "server")
                                    + "\"\nPATH=${PATH#*:}\nexec Xvfb \"$@\"\n");
    std::filesystem::permissions(folder / "Xvfb", std::filesystem::perms::owner_all);
    surroundings.environment["PATH"] = folder.path.string() + ":" + std::getenv("PATH");
    surroundings.environment["DISPLAY"] = ":no such display";
    (void)pictured({}, "painter");
    const int server = std::atoi(file_content(folder / "server").c_str());
    ASSERT_GT(server, 0);
    EXPECT_NE(kill(server, 0), 0);
}

TEST_F(PanelCommand, EveryFaultGetsOneSentenceAndLeavesNoFile) {
    std::filesystem::create_symlink("/dev/full", folder / "full.png");
    const std::pair<const char*, complaint> rows[] = {
        {"", {{"panel"}, "", 2, "--output is required"}},
        {"", {{"panel", "-o", "a.jpg"}, "painter", 2, "picture a.jpg must end in .png"}},
        {"", {{"panel", "-o", "./.png"}, "painter", 2, "call it panel.png"}},
        {"", {{"panel", "-o", "a.png", "--scale", "0"}, "painter", 2, "whole number from 1 to 8"}},
        {"", {{"panel", "-o", "a.png", "--set", "Blue=1"}, "painter", 2, "no parameter \"Blue\""}},
        {"", {{"panel", "-o", "full.png"}, "painter", 1, "cannot write full.png: No space left"}},
        {"", {{"panel", "-o", "no/a.png"}, "painter", 1, "cannot write no/a.png: No such"}},
        {"", {{"panel", "-o", "a.png"}, "no_such_plugin", 2, "is missing"}},
        {"",
         {{"panel", "-o", "a.png"}, "sine_main", 1, "sine_main.so has no editor; choose another"}},
        {"refuses", {{"panel", "-o", "a.png"}, "painter", 1, "refuses to open its editor"}},
        {"aborts", {{"panel", "-o", "a.png"}, "painter", 1, "crashes in a trial run (Aborted)"}},
        {"tells no size", {{"panel", "-o", "a.png"}, "painter", 1, "size of its editor"}},
        {"is too large", {{"panel", "-o", "a.png"}, "painter", 1, "20000 by 30 pixels"}},
    };
    for (const auto& [mood, row] : rows) {
        surroundings.environment["TINDELWAX_TEST_EDITOR"] = mood;
        expect_one_sentence_and_no_file(row);
    }
}

TEST_F(PanelCommand, WithoutAnyDisplayTheNextStepIsNamed) {
    surroundings.environment["PATH"] = folder.path;
    const words arguments{"panel", "-o", "a.png"};
    expect_one_sentence_and_no_file({arguments, "painter", 1, "install the package xvfb"});
    std::filesystem::create_symlink("/bin/false", folder / "Xvfb");
    expect_one_sentence_and_no_file({arguments, "painter", 1, "Xvfb does not start"});
}

} // namespace
