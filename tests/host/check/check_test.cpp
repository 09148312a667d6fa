#include "tests/host/process.h"

#include <algorithm>
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
    for (const auto& [name, result, row, limit] : faults) {
        const process_result judged = judge({"--limit", limit, "--only", row, TEST_FAULTY}, name);
        EXPECT_EQ(judged.status, result == "FAILED") << name << "\n" << judged.out << judged.err;
        EXPECT_EQ(std::ranges::count(rows(judged, result), row), 1) << name << "\n" << judged.out;
    }
}

TEST(Check, InstrumentWithoutFaultsFailsNoRow) {
    const process_result judged = judge({TEST_FAULTY});
    EXPECT_EQ(judged.status, 0) << judged.out << judged.err;
    EXPECT_EQ(rows(judged, "warning"), (lines{"record/pointers", "panel/opens"})) << judged.out;
}

TEST(Check, OwnInstrumentDoesWhatAnyHostExpects) {
    const process_result judged = judge({TEST_INSTRUMENT});
    EXPECT_EQ(judged.status, 0) << judged.out;
    EXPECT_EQ(rows(judged, "warning"), (lines{"texts/parameter names", "texts/parameter displays",
                                              "processor/control registers"}))
        << judged.out;
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
