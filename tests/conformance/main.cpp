/// The suite says what this organ is, on any of its libraries and through their binary interface
/// alone. Its rows are GoogleTest's tests; what remains of the command line is GoogleTest's too.

#include "conformance/trial.h"
#include "platform/process.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>

namespace {

constexpr const char* usage =
    "conformance --plugin=FILE [--seed=N]          judges the plug-in\n"
    "conformance --plugin=FILE --write=SOUNDS      records reference sounds\n"
    "conformance --plugin=FILE --compare=SOUNDS    compares its sounds with those, to the bit\n"
    "Options of GoogleTest pick rows (--gtest_filter) and list them (--gtest_list_tests).\n";

constexpr int misused = 2;

/// Takes one of the form --name=value. Returns whether there is such an option.
bool take_option(const std::string& word) {
    const std::size_t end = std::min(word.find('=') + 1, word.size());
    const std::string name = word.substr(0, end), value = word.substr(end);
    if (name == "--plugin=") {
        Row::begun.plugin_file = value;
    } else if (name == "--seed=") {
        Row::begun.seed = static_cast<unsigned>(std::atol(value.c_str()));
    } else if (name == "--write=" || name == "--compare=") {
        Row::begun.sounds_file = value;
        testing::GTEST_FLAG(filter) = name == "--write=" ? "Reference.Write" : "Reference.Compare";
    } else {
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    testing::GTEST_FLAG(filter) = "-Reference.*"; // has options of its own
    testing::InitGoogleTest(&argc, argv);
    if (!std::all_of(argv + 1, argv + argc, take_option)
        || (Row::begun.plugin_file.empty() && !testing::GTEST_FLAG(list_tests))) {
        std::cerr << usage;
        return misused;
    }
    silence_crash_dialogs();
    keep_system_libraries();
    const int result = RUN_ALL_TESTS();
    return testing::UnitTest::GetInstance()->test_to_run_count() == 0 ? misused : result;
}
