/// conformance judges a plug-in's file through the binary interface alone.

#include "conformance/reference.h"
#include "conformance/tables.h"
#include "platform/process.h"
#include "probe/signal.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <optional>
#include <string_view>
#include <thread>

namespace {

constexpr std::string_view usage =
    "conformance --plugin FILE [--only START]... [--seed N]  judges the plug-in\n"
    "conformance --plugin FILE --write FILE                  records reference sounds\n"
    "conformance --plugin FILE --compare FILE [--exact]      compares its sounds with those\n"
    "conformance --list                                      names the rows\n"
    "START is the start of rows' names: a group, or all of one.\n";

constexpr int failed = 1;
constexpr int misused = 2;
constexpr int crashed = 3;

struct arguments {
    std::filesystem::path plugin_file{};
    std::vector<std::string> starts{};
    unsigned seed = 1;
    bool lists = false;
    std::optional<std::filesystem::path> write_file{};
    std::optional<std::filesystem::path> compare_file{};
    double bound_db = between_systems_db; ///< of what is compared
};

bool is_number(const std::string& word) {
    return !word.empty() && word.find_first_not_of("0123456789") == std::string::npos;
}

/// Nothing when they are not to be understood.
std::optional<arguments> parse(std::vector<std::string> words) {
    arguments given;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i] == "--list") {
            given.lists = true;
            continue;
        }
        if (words[i] == "--exact") {
            given.bound_db = equal_db;
            continue;
        }
        if (i + 1 == words.size())
            return {};
        const std::string& value = words[i + 1];
        if (words[i] == "--plugin")
            given.plugin_file = value;
        else if (words[i] == "--only")
            given.starts.push_back(value);
        else if (words[i] == "--seed" && is_number(value))
            given.seed = static_cast<unsigned>(std::strtoul(value.c_str(), nullptr, 10));
        else if (words[i] == "--write")
            given.write_file = value;
        else if (words[i] == "--compare")
            given.compare_file = value;
        else
            return {};
        ++i;
    }
    if (!given.lists && given.plugin_file.empty())
        return {};
    return given;
}

table all_rows() {
    table rows;
    for (const auto& subject :
         {entry_rows,       lifecycle_rows, opcode_rows,    identity_rows, parameter_rows,
          program_rows,     event_rows,     onset_rows,     pitch_rows,    voice_rows,
          vibrato_rows,     control_rows,   bass_rows,      block_rows,    set_up_rows,
          storm_rows,       instance_rows,  processor_rows, panel_rows,    panel_action_rows,
          panel_window_rows})
        std::ranges::copy(subject(), std::back_inserter(rows));
    return rows;
}

bool is_picked(const row& judged, const std::vector<std::string>& starts) {
    return starts.empty() || std::ranges::any_of(starts, [&](const std::string& start) {
               return judged.name.starts_with(start);
           });
}

/// The row that a crash is told of; handlers of signals get no argument.
const trial* running_trial = nullptr;

/// The process is lost, so what else could go wrong here does not matter.
[[noreturn]] void report_end(const std::string& how) {
    std::cerr << how << " " << trial_text(*running_trial);
    if (!running_trial->doing.empty())
        std::cerr << ", " << running_trial->doing;
    std::cerr << std::endl;
    std::_Exit(crashed);
}

void report_crash(int signal) { report_end("CRASH (signal " + std::to_string(signal) + ")"); }

void report_crashes() {
    silence_crash_dialogs();
    for (const int signal : {SIGSEGV, SIGILL, SIGFPE, SIGABRT})
        std::signal(signal, report_crash);
}

/// Ends the process when the plug-in does not come back from a row.
class watchdog {
public:
    void row_begins() { begun = std::chrono::steady_clock::now(); }

private:
    /// Sleeps and looks, for anything else might allocate, which rows measure.
    void watch(const std::stop_token& end) {
        while (!end.stop_requested()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            if (std::chrono::steady_clock::now() - begun.load() > patience)
                report_end("HANG (after four minutes)");
        }
    }

    static constexpr std::chrono::minutes patience{4};

    std::atomic<std::chrono::steady_clock::time_point> begun = std::chrono::steady_clock::now();
    std::jthread watching{[this](const std::stop_token& end) { watch(end); }};
};

void report_failure(const trial& failed_trial, const std::string& what) {
    std::cerr << "FAIL " << trial_text(failed_trial);
    if (!failed_trial.doing.empty())
        std::cerr << ", " << failed_trial.doing;
    std::cerr << ": " << what << std::endl;
}

bool holds(trial running, const std::function<void(trial&)>& judge_row) {
    running_trial = &running;
    try {
        judge_row(running);
        return true;
    } catch (const mismatch& failure) {
        report_failure(running, failure.what);
    } catch (const std::exception& failure) {
        report_failure(running, failure.what());
    }
    return false;
}

int judge(const arguments& given) {
    watchdog hangs;
    int nb_rows = 0;
    int nb_failed = 0;
    for (const row& judged : all_rows())
        if (is_picked(judged, given.starts)) {
            hangs.row_begins();
            ++nb_rows;
            nb_failed +=
                !holds({.plugin_file = given.plugin_file, .row = judged.name, .seed = given.seed},
                       judged.judge);
        }
    std::cerr << "conformance: " << nb_rows << " rows, " << nb_rows - nb_failed << " hold, "
              << nb_failed << " fail (" << given.plugin_file.string() << ", seed " << given.seed
              << ")" << std::endl;
    return nb_rows == 0 ? misused : nb_failed > 0 ? failed : EXIT_SUCCESS;
}

int list_rows(const arguments& given) {
    for (const row& listed : all_rows())
        if (is_picked(listed, given.starts))
            std::cout << listed.name << "\n";
    return EXIT_SUCCESS;
}

int run(const arguments& given) {
    if (given.lists)
        return list_rows(given);
    if (!std::filesystem::is_regular_file(given.plugin_file)) {
        std::cerr << given.plugin_file.string() << ": there is no such file to judge" << std::endl;
        return misused;
    }
    report_crashes();
    discard_standard_output();
    keep_system_libraries();
    if (!given.write_file && !given.compare_file)
        return judge(given);
    const bool done =
        holds({.plugin_file = given.plugin_file, .row = "reference", .seed = given.seed},
              [&](trial& running) {
                  if (given.write_file)
                      write_reference(running, *given.write_file);
                  if (given.compare_file)
                      compare_reference(running, *given.compare_file, given.bound_db);
              });
    return done ? EXIT_SUCCESS : failed;
}

} // namespace

int main(int argc, char** argv) {
    const std::optional<arguments> given = parse({argv + 1, argv + argc});
    if (!given) {
        std::cerr << usage;
        return misused;
    }
    return run(*given);
}
