#include "check/judge.h"

#include "check/isolated.h"
#include "failure/failure.h"
#include "failure/print.h"
#include "failure/printable.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace {

/// A row that was judged.
struct finding {
    verdict result;
    std::string seen;
};

std::string place_text(const report& seen, std::uint32_t seed) {
    std::string text = "(";
    if (seen.doing[0])
        text += std::string{seen.doing.data()} + "; ";
    if (seen.rate > 0)
        text +=
            "rate " + std::to_string(seen.rate) + ", block " + std::to_string(seen.block) + ", ";
    if (seen.frame != no_frame)
        text += "frame " + std::to_string(seen.frame) + ", ";
    return text + "seed " + std::to_string(seed) + ")";
}

finding find(const row& judged, const std::filesystem::path& file, const check_request& request) {
    const auto& [crash, is_hang, told] = judge_isolated(judged, file, request);
    finding found{told.result, told.seen.data()};
    if (!crash.empty())
        found = {verdict::failed, crash};
    if (found.result == verdict::failed && (is_hang ? judged.in_time : judged.by) == demand::hosts)
        found.result = verdict::warning;
    if (found.result == verdict::failed || found.result == verdict::warning || request.is_verbose)
        found.seen += (found.seen.empty() ? "" : " ") + place_text(told, request.seed);
    return found;
}

const char* word(verdict result) {
    switch (result) {
    case verdict::warning:
        return "warning";
    case verdict::failed:
        return "FAILED";
    case verdict::skipped:
        return "skipped";
    default:
        return "ok";
    }
}

std::string line_text(const row& judged, const finding& found) {
    std::string text = word(found.result);
    text.resize(9, ' ');
    return text + judged.name + (found.seen.empty() ? "" : ": ") + printable(found.seen) + "\n";
}

/// What the list tells of a row beside its name.
std::string remark(const row& listed) {
    constexpr std::array formats{"VST 2", "CLAP", "LV2"};
    std::string text;
    if (listed.of)
        text = std::string{formats[static_cast<std::size_t>(*listed.of)]} + " alone";
    if (listed.by == demand::hosts)
        text += (text.empty() ? "" : ", ") + std::string{"a warning at most"};
    return text.empty() ? "" : " (" + text + ")";
}

bool is_picked(const row& judged, const std::vector<std::string>& starts) {
    return starts.empty() || std::ranges::any_of(starts, [&](const std::string& start) {
               return judged.name.starts_with(start);
           });
}

/// Why the file is no plug-in, and what to do; empty if it is one, though it may crash when it is
/// loaded.
std::string flaw_of(const std::filesystem::path& file, const check_request& request) {
    std::error_code error;
    if (plugin_format_of(file) != plugin_format::lv2
        && !std::filesystem::is_regular_file(file, error))
        return file.string() + " is no file; name a plug-in's, or an LV2 bundle's folder";
    const auto& [crash, is_hang, told] = judge_isolated(row_of(load_row), file, request);
    if (!crash.empty() || told.result != verdict::failed)
        return {};
    return std::string{told.seen.data()} + "; name a VST 2, CLAP or LV2 plug-in for this system";
}

/// Returns the exit status that it alone would give.
int judge_file(const std::filesystem::path& file, const table& rows, const check_request& request,
               std::FILE* p_output) {
    if (const std::string flaw = flaw_of(file, request); !flaw.empty()) {
        std::fprintf(stderr, "tindelwax: %s\n", printable(flaw).c_str());
        return exit_misused;
    }
    print(p_output, printable(file.string()) + "\n");
    std::array<int, 5> counts{};
    for (const row& judged : rows) {
        if (judged.of && judged.of != plugin_format_of(file))
            continue;
        const finding found = find(judged, file, request);
        ++counts[static_cast<std::size_t>(found.result)];
        print(p_output, line_text(judged, found));
    }
    const auto count = [&](verdict result) { return counts[static_cast<std::size_t>(result)]; };
    const auto told = [&](verdict result) { return std::to_string(count(result)); };
    print(p_output, std::to_string(std::accumulate(counts.begin(), counts.end(), 0)) + " rows: "
                        + told(verdict::ok) + " ok, " + told(verdict::warning) + " with a warning, "
                        + told(verdict::failed) + " FAILED, " + told(verdict::skipped)
                        + " skipped (seed " + std::to_string(request.seed) + ")\n");
    return count(verdict::failed) == 0 ? exit_success : exit_failed;
}

} // namespace

void judge_here(const row& judged, const std::filesystem::path& file, std::uint32_t seed,
                report& shared) {
    trial running{file, seed, shared};
    verdict result = verdict::failed;
    try {
        judged.judge(running);
        report_write(shared.seen, running.warnings());
        result = running.warnings().empty() ? verdict::ok : verdict::warning;
    } catch (const row_end& end) {
        report_write(shared.seen, end.what());
        result = end.result;
    } catch (const std::exception& end) {
        report_write(shared.seen, end.what());
    }
    shared.result = result;
}

int check_run(const check_request& request, std::FILE* p_output) {
#ifdef _WIN32
    if (!request.row.empty())
        judge_for_parent(request);
#endif
    table rows = all_rows();
    std::erase_if(rows, [&](const row& judged) { return !is_picked(judged, request.starts); });
    if (rows.empty())
        throw failure{exit_misused, "no row's name starts so; --list tells them all"};
    if (request.lists) {
        for (const row& listed : rows)
            print(p_output, listed.name + remark(listed) + "\n");
        return exit_success;
    }
    int status = exit_success;
    for (const std::filesystem::path& file : request.files)
        status = std::max(status, judge_file(file, rows, request, p_output));
    return status;
}
