#include "check/isolated.h"

#include "failure/failure.h"
#include "platform/process.h"

#include <cstdio>
#include <cstdlib>
#include <new>
#include <windows.h>

namespace {

std::wstring shared_name() { return L"tindelwax-check-" + std::to_wstring(GetCurrentProcessId()); }

/// Memory of that name, made by whoever asks first.
report* map_report(const std::wstring& name) {
    const HANDLE memory = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                             sizeof(report), name.c_str());
    void* const view = memory ? MapViewOfFile(memory, FILE_MAP_ALL_ACCESS, 0, 0, 0) : nullptr;
    if (!view)
        throw std::bad_alloc{};
    return static_cast<report*>(view);
}

/// File names hold no quotation marks, and rows' names neither.
std::wstring word(const std::wstring& text) { return L" \"" + text + L"\""; }

std::wstring widened(const std::string& text) { return {text.begin(), text.end()}; }

/// What runs in a job ends with its last handle, so however the judge ends itself.
HANDLE make_job() {
    const HANDLE job = CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

std::string hex_text(DWORD number) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%08lX", number);
    return text.data();
}

} // namespace

isolated_end judge_isolated(const row& judged, const std::filesystem::path& file,
                            const check_request& request) {
    static report* const p_memory = map_report(shared_name());
    const report& shared = *new (p_memory) report;
    std::wstring line = word(executable_path().wstring()) + L" --seed "
                        + std::to_wstring(request.seed) + L" --row" + word(widened(judged.name))
                        + L" --shared" + word(shared_name()) + L" --" + word(file.wstring());
    STARTUPINFOW start{};
    start.cb = sizeof start;
    if (request.is_verbose) {
        start.dwFlags = STARTF_USESTDHANDLES; // its output joins its errors, not our own lines
        start.hStdOutput = start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    }
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, line.data() + 1, nullptr, nullptr, request.is_verbose,
                        CREATE_SUSPENDED | (request.is_verbose ? 0 : DETACHED_PROCESS), nullptr,
                        nullptr, &start, &process))
        throw failure{exit_failed,
                      "no process can be started: error " + std::to_string(GetLastError())};
    const HANDLE job = make_job();
    AssignProcessToJobObject(job, process.hProcess);
    ResumeThread(process.hThread);
    const DWORD limit = static_cast<DWORD>(request.limit_seconds) * 1000;
    const bool is_hang = WaitForSingleObject(process.hProcess, limit) == WAIT_TIMEOUT;
    DWORD status = 0;
    if (is_hang) {
        TerminateProcess(process.hProcess, 1);
        WaitForSingleObject(process.hProcess, INFINITE);
    }
    GetExitCodeProcess(process.hProcess, &status);
    CloseHandle(job); // and with it what the row started
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    if (is_hang)
        return {"it hangs: the row is not done after " + std::to_string(request.limit_seconds)
                    + " seconds",
                true, shared};
    if (status >= 0xC0000000)
        return {"it crashes: exception " + hex_text(status), false, shared};
    if (shared.result == verdict::none)
        return {"it ends the process", false, shared};
    return {{}, false, shared};
}

void judge_for_parent(const check_request& request) {
    std::setvbuf(stdout, nullptr, _IONBF, 0); // for nothing flushes it before the end
    silence_crash_dialogs();
    keep_system_libraries();
    report& shared = *map_report(widened(request.shared));
    judge_here(row_of(request.row), request.files.at(0), request.seed, shared);
    std::_Exit(0);
}
