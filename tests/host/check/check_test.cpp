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
    std::string row; ///< that judges it
    std::string limit = "60"; ///< seconds
};

std::ostream& operator<<(std::ostream& stream, const fault_case& shown) {
    return stream << shown.name;
}

struct Faults : testing::TestWithParam<fault_case> {};

TEST_P(Faults, AreNoticedByTheirRows) {
    const auto& [name, result, row, limit] = GetParam();
    const process_result judged = judge({"--limit", limit, "--only", row, TEST_FAULTY}, name);
    EXPECT_EQ(judged.status, result == "FAILED") << judged.out << judged.err;
    EXPECT_EQ(std::ranges::count(rows(judged, result), row), 1) << judged.out;
}

INSTANTIATE_TEST_SUITE_P(
    , Faults,
    testing::Values(fault_case{"crash", "FAILED", "texts/vendor"},
                    fault_case{"hang", "FAILED", "texts/product", "1"},
                    fault_case{"no_number", "FAILED", "rates/88200"},
                    fault_case{"subnormals", "warning", "sound/no subnormal numbers"},
                    fault_case{"text_without_zero", "FAILED", "texts/effect name"},
                    fault_case{"text_beyond", "FAILED", "texts/vendor"},
                    fault_case{"shared_state", "FAILED", "instances/side by side"},
                    fault_case{"allocation", "FAILED", "audio-thread/allocation"},
                    fault_case{"lock", "FAILED", "audio-thread/locks"},
                    fault_case{"leak", "FAILED", "resources/opened and closed"},
                    fault_case{"mapped_leak", "FAILED", "resources/opened and closed"},
                    fault_case{"control_register", "FAILED", "processor/control registers"},
                    fault_case{"gestures", "FAILED", "panel/gestures are balanced"},
                    fault_case{"null_outputs", "warning", "blocks/null outputs"},
                    fault_case{"long_blocks", "warning", "blocks/longer than announced"},
                    fault_case{"no_record", "FAILED", "loading/opens and closes"},
                    fault_case{"mute", "warning", "sound/note is heard"},
                    fault_case{"opens_file", "FAILED", "audio-thread/files and mappings"}),
    [](const auto& given) { return given.param.name; });

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

TEST(Check, FilesThatAreNoPluginsAndRowsThatAreNoneAreMisuse) {
    const process_result text = judge({"--only", "record", __FILE__, TEST_INSTRUMENT});
    EXPECT_EQ(text.status, 2);
    EXPECT_EQ(std::ranges::count(text.err, '\n'), 1) << text.err;
    EXPECT_EQ(rows(text, "ok").size(), 3u) << "the file after it";
    EXPECT_EQ(judge({"--only", "nothing", TEST_INSTRUMENT}).status, 2);
    EXPECT_EQ(judge({}).status, 2);
}

} // namespace
