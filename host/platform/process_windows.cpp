#include "platform/process.h"

#include <cstdlib>
#include <span>
#include <string>
#include <windows.h>

#include <shellapi.h>

std::vector<std::string> program_arguments(int, char**) {
    int nb_words = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &nb_words);
    std::vector<std::string> arguments;
    for (const wchar_t* word : std::span{words, static_cast<std::size_t>(nb_words)}.subspan(1)) {
        const std::u8string argument = std::filesystem::path{word}.u8string();
        arguments.emplace_back(argument.begin(), argument.end());
    }
    LocalFree(words);
    return arguments;
}

std::filesystem::path executable_path() {
    std::wstring path(32768, L'\0'); // as long as any can be
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

void set_environment(const char* name, const char* value) { _putenv_s(name, value); }

void silence_crash_dialogs() {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
}

// Wine loses a handle each time that the file dialogs' library comes and goes.
void keep_system_libraries() { LoadLibraryW(L"comdlg32.dll"); }

bool keep_memory() { return false; }
