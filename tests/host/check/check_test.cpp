#include "tests/host/process.h"
#include "tests/temporary_folder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace {

using lines = std::vector<std::string>;

/// The judge's lines of that result, without what was seen.
lines rows(const process_result& judged, const std::string& result) {
    lines found;
    std::istringstream text{judged.out};
    for (std::string line; std::getline(text, line);)
        if (line.starts_with(result))
            found.push_back(line.substr(9, line.find(':') - 9));
    return found;
}

process_result judge(std::vector<std::string> arguments, const std::string& fault = "") {
    arguments.insert(arguments.begin(), {TEST_COMMAND, "check"});
    return process_run(arguments,
                       {.environment = {{"TINDELWAX_SEED", "1"}, {"TINDELWAX_TEST_FAULT", fault}}});
}

struct fault_case {
    std::string name;
    std::string result;
    std::string row;          ///< that judges it
    std::string limit = "60"; ///< seconds
};

void expect_noticed(const std::string& file, const fault_case& planted) {
    const auto& [name, result, row, limit] = planted;
    const process_result judged = judge({"--limit", limit, "--only", row, file}, name);
    EXPECT_EQ(judged.status, result == "FAILED") << name << "\n" << judged.out << judged.err;
    EXPECT_EQ(std::ranges::count(rows(judged, result), row), 1) << name << "\n" << judged.out;
}

const fault_case faults[]{{"crash", "FAILED", "texts/vendor"},
                          {"hang", "FAILED", "texts/product", "1"},
                          {"no_number", "FAILED", "rates/88200"},
                          {"subnormals", "warning", "sound/no subnormal numbers"},
                          {"text_without_zero", "FAILED", "texts/effect name"},
                          {"text_beyond", "FAILED", "texts/vendor"},
                          {"shared_state", "FAILED", "instances/side by side"},
                          {"allocation", "FAILED", "audio-thread/allocation"},
                          {"lock", "FAILED", "audio-thread/locks"},
                          {"leak", "FAILED", "resources/opened and closed"},
                          {"mapped_leak", "FAILED", "resources/opened and closed"},
                          {"left_file", "FAILED", "resources/opened and closed"},
                          {"left_window", "FAILED", "panel/opens"},
                          {"ignored_state", "warning", "state/comes back"},
                          {"odd_value", "warning", "parameters/values that are no numbers"},
                          {"control_register", "FAILED", "processor/control registers"},
                          {"gestures", "FAILED", "panel/gestures are balanced"},
                          {"null_outputs", "warning", "blocks/null outputs"},
                          {"long_blocks", "warning", "blocks/longer than announced"},
                          {"no_record", "FAILED", "loading/opens and closes"},
                          {"mute", "warning", "sound/note is heard"},
                          {"opens_file", "FAILED", "audio-thread/files and mappings"}};

TEST(Check, FaultsAreNoticedByTheirRows) {
    for (const fault_case& planted : faults)
        expect_noticed(TEST_FAULTY, planted);
}

const fault_case clap_faults[]{{"any_extension", "FAILED", "clap/descriptor"},
                               {"any_id", "FAILED", "clap/host without extensions"},
                               {"no_wildcards", "FAILED", "clap/wildcards"},
                               {"default", "FAILED", "clap/parameters within bounds"},
                               {"texts", "FAILED", "clap/parameters as texts"},
                               {"no_automation", "FAILED", "clap/automation at any frame"},
                               {"deaf_flush", "FAILED", "clap/flushed parameters"},
                               {"no_reset", "FAILED", "clap/reset"},
                               {"early_sleep", "FAILED", "clap/sleep"},
                               {"transport", "FAILED", "clap/transport"},
                               {"odd_rates", "warning", "clap/odd rates"},
                               {"any_state", "warning", "clap/damaged states"},
                               {"large_reads", "FAILED", "clap/states in pieces"}};

TEST(Check, FaultsOfClapPluginsAreNoticed) {
    for (const fault_case& planted : clap_faults)
        expect_noticed(TEST_FAULTY_CLAP, planted);
}

/// Of a bundle in which one text stands for another.
const struct {
    std::string text, instead;
    fault_case planted;
} bundle_faults[]{{"lv2:requiredFeature urid:map",
                   "lv2:requiredFeature urid:map , <urn:none>",
                   {"feature", "warning", "lv2/required features"}},
                  {"lv2:default 1.0", "lv2:default 2.0", {"default", "FAILED", "lv2/ports"}},
                  {"\"flute\" ; pset", "\"oboe\" ; pset", {"preset", "FAILED", "lv2/presets"}},
                  {"pset:value 0.13", "pset:value 13", {"value", "FAILED", "lv2/presets"}},
                  {"lv2:extensionData state:interface",
                   "lv2:extensionData state:interface , <urn:none>",
                   {"extension", "FAILED", "lv2/extension data"}},
                  {"optionalFeature lv2:hardRTCapable",
                   "optionalFeature <urn:none>",
                   {"real_time", "warning", "lv2/fit for real time"}},
                  {"a ui:X11UI ;\n    lv2:binary <tindelwax.so>",
                   "a ui:X11UI ;\n    lv2:binary <none.so>",
                   {"panel", "FAILED", "lv2/libraries of panels"}}};

TEST(Check, FaultsOfBundlesAreNoticed) {
    for (const auto& [text, instead, planted] : bundle_faults) {
        const temporary_folder folder;
        int nb_places = 0;
        for (const auto& file : std::filesystem::directory_iterator{TEST_BUNDLE}) {
            std::ifstream whole{file.path(), std::ios::binary};
            std::string bytes{std::istreambuf_iterator{whole}, {}};
            for (auto at = bytes.find(text); at != bytes.npos; at = bytes.find(text, at + 1))
                ++nb_places, bytes.replace(at, text.size(), instead);
            std::ofstream{folder / file.path().filename().string(), std::ios::binary} << bytes;
        }
        EXPECT_GT(nb_places, 0) << planted.name;
        expect_noticed(folder.path, planted);
    }
}

TEST(Check, InstrumentWithoutFaultsFailsNoRow) {
    const process_result judged = judge({TEST_FAULTY});
    EXPECT_EQ(judged.status, 0) << judged.out << judged.err;
    EXPECT_EQ(rows(judged, "warning"), (lines{"record/pointers", "panel/opens"})) << judged.out;
    EXPECT_EQ(judge({"--only", "blocks", TEST_FAULTY_CLAP}).status, 0) << "ports of any number";
}

TEST(Check, OwnInstrumentDoesWhatAnyHostExpects) {
    for (const auto& [file, warnings] :
         {std::pair{TEST_INSTRUMENT, lines{"texts/parameter names", "texts/parameter displays",
                                           "processor/control registers"}},
          {TEST_CLAP, {"processor/control registers"}},
          {TEST_BUNDLE, {"processor/control registers"}}}) {
        const process_result judged = judge({file});
        EXPECT_EQ(judged.status, 0) << judged.out << judged.err;
        EXPECT_EQ(rows(judged, "warning"), warnings) << judged.out;
    }
}

TEST(Check, VerboseShowsWhatAPluginPrintsAndTheRowsPlace) {
    const process_result judged = judge({"--verbose", "--only", "record/num", TEST_INSTRUMENT});
    EXPECT_NE(judged.err.find("EOF\n"), std::string::npos) << judged.err;
    EXPECT_NE(judged.out.find("record/numbers: (seed 1)\n"), std::string::npos) << judged.out;
}

TEST(Check, FilesThatAreNoPluginsAndRowsThatAreNoneAreMisuse) {
    const process_result text = judge({"--only", "record", __FILE__, TEST_INSTRUMENT});
    EXPECT_EQ(text.status, 2);
    EXPECT_EQ(std::ranges::count(text.err, '\n'), 1) << text.err;
    EXPECT_EQ(rows(text, "ok").size(), 3u) << "the file after it";
    EXPECT_EQ(judge({"--only", "nothing", TEST_INSTRUMENT}).status, 2);
    EXPECT_EQ(judge({}).status, 2);
}

} // namespace
