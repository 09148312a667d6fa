/// The suite says what this organ is, on any of its libraries and through their binary interface
/// alone. Its rows are GoogleTest's tests; what remains of the command line is GoogleTest's too.

#include "conformance/reference.h"
#include "conformance/tables.h"
#include "platform/process.h"

#include <gtest/gtest.h>
#include <iostream>
#include <map>
#include <memory>
#include <string>

namespace {

constexpr const char* usage =
    "conformance --plugin=FILE [--seed=N]          judges the plug-in\n"
    "conformance --plugin=FILE --write=SOUNDS      records reference sounds\n"
    "conformance --plugin=FILE --compare=SOUNDS    compares its sounds with those, to the bit\n"
    "Options of GoogleTest pick rows (--gtest_filter) and list them (--gtest_list_tests).\n";

constexpr int misused = 2;

class row_test : public testing::Test {
public:
    row_test(std::function<void(trial&)> judge_row, trial context)
        : judge(std::move(judge_row)), running(std::move(context)) {}

    void TestBody() override {
        testing::internal::CaptureStdout(); // where plug-ins write lines of their own
        try {
            judge(running);
        } catch (const mismatch& failure) {
            ADD_FAILURE() << trial_text(running) << failure.what;
        }
        testing::internal::GetCapturedStdout();
    }

private:
    std::function<void(trial&)> judge;
    trial running;
};

void register_row(const row& judged, const trial& context) {
    const auto slash = judged.name.find('/');
    testing::RegisterTest(
        judged.name.substr(0, slash).c_str(), judged.name.substr(slash + 1).c_str(), nullptr,
        nullptr, __FILE__, __LINE__,
        [judge = judged.judge, context]() -> row_test* { return new row_test(judge, context); });
}

void register_rows(const trial& context) {
    for (const auto& subject :
         {identity_rows, parameter_rows, program_rows, event_rows, onset_rows, pitch_rows,
          voice_rows, vibrato_rows, control_rows, bass_rows, block_rows, set_up_rows, instance_rows,
          processor_rows, panel_rows, panel_action_rows, panel_window_rows})
        for (const row& judged : subject())
            register_row(judged, context);
}

/// Options of the form --name=value; those that are none of these make it empty.
std::map<std::string, std::string> options_of(int argc, char** argv) {
    std::map<std::string, std::string> options;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        const auto equals = word.find('=');
        const std::string name = word.substr(0, equals);
        if (equals == std::string::npos
            || (name != "--plugin" && name != "--seed" && name != "--write" && name != "--compare"))
            return {};
        options[name] = word.substr(equals + 1);
    }
    return options;
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const auto options = options_of(argc, argv);
    const auto value = [&](const char* name) {
        const auto found = options.find(name);
        return found == options.end() ? std::string() : found->second;
    };
    trial context{.plugin_file = value("--plugin")};
    if (!value("--seed").empty())
        context.seed = static_cast<unsigned>(std::atol(value("--seed").c_str()));
    if (!testing::GTEST_FLAG(list_tests)
        && !std::filesystem::is_regular_file(context.plugin_file)) {
        std::cerr << usage << "There is no plug-in \"" << context.plugin_file.string() << "\".\n";
        return misused;
    }
    silence_crash_dialogs();
    keep_system_libraries();
    const std::string written = value("--write"), compared = value("--compare");
    if (!written.empty())
        register_row({"reference/write", [=](trial& row) { write_reference(row, written); }},
                     context);
    else if (!compared.empty())
        register_row({"reference/compare", [=](trial& row) { compare_reference(row, compared); }},
                     context);
    else
        register_rows(context);
    const int result = RUN_ALL_TESTS();
    return testing::UnitTest::GetInstance()->test_to_run_count() == 0 ? misused : result;
}
